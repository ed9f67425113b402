#include "db/trail/TrailChain.h"

#include "base/Digest.h"
#include "base/Text.h"
#include "db/trail/TrailEnd.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

namespace nv {

namespace {

/// With its length, so that no two entries are put together to the same text.
void add(std::string &text, std::string_view field) {
    text += fmt::format("{}:{}\n", field.size(), field);
}

/// The highest number that was ever given: entries that are missing at the end leave it behind.
std::int64_t numbersGiven(SQLite::Database &database) {
    if (!database.tableExists("sqlite_sequence"))
        return 0;
    SQLite::Statement row(database, "SELECT seq FROM sqlite_sequence WHERE name = ?");
    row.bind(1, kCaseTrailTable);
    return row.executeStep() ? row.getColumn(0).getInt64() : 0;
}

/// Whether the program has made a trail with hashes here: the project's record of its schema says
/// so, also when the table or its columns are gone.
bool wasMadeChained(SQLite::Database &database) {
    return CaseTrail(database).isChained() ||
           (database.tableExists("SchemaColumns") &&
            database.execAndGet("SELECT count(*) FROM SchemaColumns WHERE TableName = 'AuditTrail' "
                                "AND ColumnName = 'EntryHash'")
                    .getInt() > 0);
}

/// Follows the chain entry by entry.
class ChainCheck {
  public:
    ChainCheck(TrailChain &chain, SQLite::Database &database)
        : m_chain(chain), m_kept(keptTrailEnd(database)) {}

    void take(const TrailEntry &entry) {
        if (entry.trailID != m_chain.entries + 1)
            breaks(m_chain.entries + 1, "is missing");
        ++m_chain.entries;
        const std::string hash = trailHash(entry, m_before);
        if (entry.entryHash.empty())
            takeUnchained(entry);
        else if (entry.previousHash != m_before)
            breaks(entry.trailID, "doesn't follow the entry before it: one of them was changed");
        else if (entry.entryHash != hash)
            breaks(entry.trailID, "was changed: its fields don't give its hash");
        if (!entry.entryHash.empty())
            takeHash(entry);
        m_before = hash;
    }
    /// After all entries: what can only be missing.
    void finish(SQLite::Database &database) {
        const std::int64_t unchained = m_chain.unchained;
        if (m_kept && unchained > m_kept->unchained)
            breaks(m_kept->unchained + 1, kLost);
        if (numbersGiven(database) > m_chain.entries ||
            (m_kept && m_kept->entries > m_chain.entries))
            breaks(m_chain.entries + 1, "is missing");
        // The first entry that got a hash came together with its columns.
        if (m_chain.head.empty() && wasMadeChained(database)) {
            if (m_chain.entries == 0)
                breaks(1, "is missing");
            else
                breaks(m_chain.entries, kLost);
        }
    }
    void breaks(std::int64_t number, std::string why) {
        if (m_chain.broken != 0)
            return;
        m_chain.broken = number;
        m_chain.why = std::move(why);
    }

  private:
    void takeHash(const TrailEntry &entry) {
        m_chain.head = entry.entryHash;
        if (m_kept && entry.trailID == m_kept->entries && entry.entryHash != m_kept->hash)
            breaks(entry.trailID, "isn't the one that the project has kept as its last");
    }
    /// Only the first entries can be older than the chain.
    void takeUnchained(const TrailEntry &entry) {
        ++m_chain.unchained;
        if (!m_chain.head.empty())
            breaks(entry.trailID, "has no hash, though one before it has");
    }

    static constexpr const char *kLost = "has lost its hash: the trail was written with hashes";

    TrailChain &m_chain;
    std::optional<TrailEnd> m_kept;
    std::string m_before; ///< the hash that the next one has to name
};

} // namespace

std::string trailHash(const TrailEntry &entry, std::string_view before) {
    std::string text;
    add(text, before);
    add(text, entry.actionDateUTC.has() ? fmt::format("{:.17g}", entry.actionDateUTC.days()) : "");
    for (const std::string *field : {&entry.action, &entry.detail, &entry.filePath})
        add(text, *field);
    add(text, std::to_string(entry.fileSize));
    add(text, entry.md5Hash);
    add(text, entry.sha256Hash);
    add(text, std::to_string(entry.rowCount));
    add(text, entry.appVersion);
    Digest digest(DigestAlgorithm::sha256);
    digest.add(text);
    return digest.takeHex();
}

TrailChain checkTrail(SQLite::Database &database) {
    TrailChain chain;
    ChainCheck check(chain, database);
    CaseTrail(database).forEach([&check](const TrailEntry &entry) { check.take(entry); });
    check.finish(database);
    return chain;
}

std::string chainText(const TrailChain &chain) {
    if (chain.entries == 0 && chain.isWhole())
        return "The case trail has no entries.";
    if (!chain.isWhole())
        return fmt::format("The case trail is broken: entry {} {}.", chain.broken, chain.why);
    std::string text =
        fmt::format("The case trail is whole: {}",
                    counted(static_cast<std::uint64_t>(chain.entries), "entry", "entries"));
    if (chain.unchained > 0)
        text += fmt::format(", the first {} not chained, as an earlier version wrote them",
                            chain.unchained);
    if (!chain.head.empty())
        text += fmt::format("; the last has the hash {}", chain.head);
    return text + ".";
}

} // namespace nv
