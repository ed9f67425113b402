#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"
#include "readers/sqlite/TableCursor.h"

#include <functional>
#include <string_view>

namespace nv {

// What the readers of SQLite files share: copy, open, walk a table, say what was lost.

/// A reader's name in the log, and what the status window shows for it.
struct SqliteReader {
    std::string_view procedure;
    std::string_view title;
    std::string_view subject;
    std::string_view icon;
};

/// Opens a copy of the file and runs `body` on it. A file that can't be read in whole or in part is
/// logged once, as serious. The copy is gone afterwards, whatever happened.
ReadResult readSqliteFile(ReadContext &ctx, const SqliteReader &reader,
                          const std::function<ReadResult(EvidenceDatabase &)> &body);

/// Hands on each row of the cursor's table. A row that fails is logged, and the walk goes on.
/// `task` counts these rows; its cancelling ends the walk.
ReadResult eachRow(TableCursor &cursor, ReadContext &ctx, TaskMonitor &task,
                   std::string_view procedure, const std::function<void(const Row &row)> &save);

using TakeRow = std::function<void(std::int64_t rowId, const Row &row)>;

/// The same for the table that a file is there for, with the row's id. Throws EvidenceDamage when
/// it isn't there. Tables that may be missing are for FurtherTables.
ReadResult mainRows(EvidenceDatabase &database, std::string_view table,
                    std::span<const std::string_view> columns, ReadContext &ctx,
                    std::string_view procedure, const TakeRow &take);

/// Adds damage that no row was lost to, or not of the table that gives the records.
void addDamage(ReadResult &result, std::string_view reason);

} // namespace nv
