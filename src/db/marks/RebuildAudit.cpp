#include "db/marks/RebuildAudit.h"

#include "db/marks/PageNotes.h"
#include "db/schema/SchemaCatalogue.h"
#include "db/sql/BindId.h"
#include "db/sql/Savepoint.h"

#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

namespace nv {

void RebuildAudit::forget(UrlId page) {
    forgetPage(m_database, kRebuildAuditTable, page);
}

void RebuildAudit::store(UrlId page, std::span<const ReferenceNote> notes) {
    Savepoint whole(m_database);
    SchemaCatalogue(m_database).addOnFirstUse(kRebuildAuditTable);
    forget(page);
    SQLite::Statement insert(m_database, "INSERT INTO RebuildAudit (URL_ID, Reference, "
                                         "AccuracyScore, Rewritten, Candidates) "
                                         "VALUES (?, ?, ?, ?, ?)");
    std::int64_t reference = 0;
    for (const ReferenceNote &note : notes) {
        insert.reset();
        bindId(insert, 1, page);
        insert.bind(2, ++reference);
        insert.bind(3, note.accuracyScore);
        insert.bind(4, note.rewritten ? 1 : 0);
        insert.bind(5, fmt::format("{}", fmt::join(note.candidates, " ")));
        insert.exec();
    }
    whole.release();
}

std::map<std::size_t, ReferenceNote> RebuildAudit::notes(UrlId page) const {
    std::map<std::size_t, ReferenceNote> all;
    if (!m_database.tableExists(kRebuildAuditTable))
        return all;
    SQLite::Statement row(m_database, "SELECT Reference, AccuracyScore, Rewritten, Candidates "
                                      "FROM RebuildAudit WHERE URL_ID = ? ORDER BY Audit_ID");
    bindId(row, 1, page);
    while (row.executeStep())
        all[static_cast<std::size_t>(row.getColumn(0).getInt64())] = {
            row.getColumn(1).getString(), row.getColumn(2).getInt() != 0,
            numbersIn(row.getColumn(3).getString())};
    return all;
}

} // namespace nv
