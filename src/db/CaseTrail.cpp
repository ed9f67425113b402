#include "db/CaseTrail.h"

#include "db/SchemaCatalogue.h"
#include "db/SqliteErrors.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

namespace nv {

namespace {

constexpr const char *kInsert =
    "INSERT INTO AuditTrail (ActionDateUTC, Action, Detail, FilePath, FileSize, MD5Hash, "
    "SHA256Hash, RowCount, AppVersion) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)";

constexpr const char *kSelect =
    "SELECT Trail_ID, ActionDateUTC, Action, Detail, FilePath, FileSize, MD5Hash, SHA256Hash, "
    "RowCount, AppVersion FROM AuditTrail ORDER BY Trail_ID";

TrailEntry entryOf(SQLite::Statement &row) {
    return {row.getColumn(0).getInt64(),  Date::fromDays(row.getColumn(1).getDouble()),
            row.getColumn(2).getString(), row.getColumn(3).getString(),
            row.getColumn(4).getString(), row.getColumn(5).getInt64(),
            row.getColumn(6).getString(), row.getColumn(7).getString(),
            row.getColumn(8).getInt64(),  row.getColumn(9).getString()};
}

} // namespace

void CaseTrail::add(const TrailEntry &entry) {
    onProject(m_database, [&] {
        SchemaCatalogue(m_database).addOnFirstUse(kCaseTrailTable);
        SQLite::Statement insert(m_database, kInsert);
        insert.bind(1, entry.actionDateUTC.days());
        insert.bind(2, entry.action);
        insert.bind(3, entry.detail);
        insert.bind(4, entry.filePath);
        insert.bind(5, entry.fileSize);
        insert.bind(6, entry.md5Hash);
        insert.bind(7, entry.sha256Hash);
        insert.bind(8, entry.rowCount);
        insert.bind(9, entry.appVersion);
        insert.exec();
    });
}

std::vector<TrailEntry> CaseTrail::entries() const {
    std::vector<TrailEntry> all;
    if (!m_database.tableExists(kCaseTrailTable))
        return all;
    SQLite::Statement row(m_database, kSelect);
    while (row.executeStep())
        all.push_back(entryOf(row));
    return all;
}

} // namespace nv
