#include "db/trail/CaseTrail.h"

#include "db/schema/SchemaCatalogue.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "db/trail/TrailChain.h"
#include "db/trail/TrailEnd.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

namespace nv {

namespace {

constexpr const char *kInsert =
    "INSERT INTO AuditTrail (ActionDateUTC, Action, Detail, FilePath, FileSize, MD5Hash, "
    "SHA256Hash, RowCount, AppVersion, PreviousHash, EntryHash) "
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";

constexpr const char *kFields =
    "Trail_ID, ActionDateUTC, Action, Detail, FilePath, FileSize, MD5Hash, SHA256Hash, "
    "RowCount, AppVersion";

std::string selectionOf(bool isChained) {
    return fmt::format("SELECT {}, {} FROM AuditTrail ORDER BY Trail_ID", kFields,
                       isChained ? "PreviousHash, EntryHash" : "'', ''");
}

TrailEntry entryOf(SQLite::Statement &row) {
    const SQLite::Column date = row.getColumn(1);
    return {
        row.getColumn(0).getInt64(),   date.isNull() ? Date() : Date::fromDays(date.getDouble()),
        row.getColumn(2).getString(),  row.getColumn(3).getString(),
        row.getColumn(4).getString(),  row.getColumn(5).getInt64(),
        row.getColumn(6).getString(),  row.getColumn(7).getString(),
        row.getColumn(8).getInt64(),   row.getColumn(9).getString(),
        row.getColumn(10).getString(), row.getColumn(11).getString()};
}

void insertEntry(SQLite::Database &database, const TrailEntry &entry) {
    SQLite::Statement insert(database, kInsert);
    if (entry.actionDateUTC.has())
        insert.bind(1, entry.actionDateUTC.days());
    insert.bind(2, entry.action);
    insert.bind(3, entry.detail);
    insert.bind(4, entry.filePath);
    insert.bind(5, entry.fileSize);
    insert.bind(6, entry.md5Hash);
    insert.bind(7, entry.sha256Hash);
    insert.bind(8, entry.rowCount);
    insert.bind(9, entry.appVersion);
    insert.bind(10, entry.previousHash);
    insert.bind(11, entry.entryHash);
    insert.exec();
}

} // namespace

void CaseTrail::add(const TrailEntry &entry) {
    onProject(m_database, [&] {
        Savepoint together(m_database);
        SchemaCatalogue catalogue(m_database);
        const bool wasChained = isChained();
        catalogue.addOnFirstUse(kCaseTrailTable);
        catalogue.addLaterColumns(kCaseTrailTable);
        // Takes the right to write before the last entry is read: another program's entry in
        // between would be one that both follow.
        m_database.exec("UPDATE AuditTrail SET RowCount = 0 WHERE 0");
        // Counted once: imports add entries by the ten thousand.
        const auto kept = keptTrailEnd(m_database);
        const std::int64_t unchained = kept ? kept->unchained : unchainedBefore(wasChained);
        TrailEntry chained = entry;
        chained.previousHash = lastHash();
        chained.entryHash = trailHash(chained, chained.previousHash);
        insertEntry(m_database, chained);
        const std::int64_t id = m_database.getLastInsertRowid();
        if (!kept || isInTrail(*kept))
            keepTrailEnd(m_database, {id, unchained, chained.entryHash});
        together.release();
    });
}

/// Entries that earlier versions wrote. A trail whose last one has lost its hash has none of them:
/// what follows would make all before it look like theirs.
std::int64_t CaseTrail::unchainedBefore(bool wasChained) const {
    const auto hashless = [this](const char *which) {
        return m_database
            .execAndGet(fmt::format("SELECT count(*) FROM AuditTrail WHERE ifnull(EntryHash, '') = "
                                    "''{}",
                                    which))
            .getInt64();
    };
    const bool isLastOne = hashless(" AND Trail_ID = (SELECT max(Trail_ID) FROM AuditTrail)") > 0;
    return wasChained && isLastOne ? 0 : hashless("");
}

/// An end that isn't there any more stays: a new one would hide that entries are missing.
bool CaseTrail::isInTrail(const TrailEnd &end) const {
    SQLite::Statement last(m_database, "SELECT EntryHash FROM AuditTrail WHERE Trail_ID = ?");
    last.bind(1, end.entries);
    return last.executeStep() && last.getColumn(0).getString() == end.hash;
}

bool CaseTrail::isChained() const {
    if (!m_database.tableExists(kCaseTrailTable))
        return false;
    // Connections that may only read tables have no pragmas.
    const SQLite::Statement all(m_database, "SELECT * FROM AuditTrail LIMIT 0");
    int found = 0;
    for (int at = 0; at < all.getColumnCount(); ++at) {
        const std::string name = all.getColumnName(at);
        found += name == "PreviousHash" || name == "EntryHash" ? 1 : 0;
    }
    return found == 2;
}

/// Those of earlier versions are chained in their order when the first one follows them.
std::string CaseTrail::lastHash() const {
    SQLite::Statement last(m_database,
                           "SELECT EntryHash FROM AuditTrail ORDER BY Trail_ID DESC LIMIT 1");
    if (!last.executeStep())
        return {};
    std::string hash = last.getColumn(0).getString();
    if (hash.empty())
        forEach([&hash](const TrailEntry &entry) { hash = trailHash(entry, hash); });
    return hash;
}

std::int64_t CaseTrail::lastID() const {
    if (!m_database.tableExists(kCaseTrailTable))
        return 0;
    return m_database.execAndGet("SELECT ifnull(max(Trail_ID), 0) FROM AuditTrail").getInt64();
}

std::vector<TrailEntry> CaseTrail::entries() const {
    std::vector<TrailEntry> all;
    forEach([&all](const TrailEntry &entry) { all.push_back(entry); });
    return all;
}

void CaseTrail::forEach(const std::function<void(const TrailEntry &)> &take) const {
    if (!m_database.tableExists(kCaseTrailTable))
        return;
    SQLite::Statement row(m_database, selectionOf(isChained()));
    while (row.executeStep())
        take(entryOf(row));
}

} // namespace nv
