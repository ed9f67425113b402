#pragma once

#include "base/TaskMonitor.h"
#include "views/rows/RecordFilters.h"
#include "views/rows/UnreadRows.h"
#include "views/rows/UrlQuery.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// A million rows are held in four megabytes.
using RowIds = std::vector<std::int32_t>;

enum class Walk { Finished, Cancelled };

/// Whether the database takes the statement: it may name columns that a stored query lacks.
bool canRun(SQLite::Database &database, const IdQuery &query);

/// Appends the ids that `query` gives, in its order. A statement that is still at work is cancelled
/// too. What was appended before a cancel or a failure stays. Throws what the database says, and
/// std::runtime_error for a row without an id or with one beyond 32 bits.
Walk collectIds(SQLite::Database &database, const IdQuery &query, TaskMonitor &task, RowIds &ids);

/// Appends those of `from` that filterRecord() admits, in their order, and shows how far it is. A
/// row that can't be read is admitted: whoever looks at it learns that. A cancel leaves those that
/// it had found.
Walk filterIds(SQLite::Database &database, const RowIds &from, const RecordFilters &filters,
               TaskMonitor &task, RowIds &ids);

/// The rows that a query and the filters leave.
struct FoundRows {
    RowIds ids;
    std::size_t hidden = 0; ///< that the filters took away; 0 while they are off
    UnreadRows lost;        ///< of `ids`, those of which nobody can tell whether they belong
    bool oneByOne = false;  ///< the query failed at damage, so that each row was asked for itself
};

/// Both of the above, after what was found before. What was found before a cancel or a failure
/// stays. A damaged page costs no more than its own rows: those of which nobody can tell whether
/// the query gives them stand last.
Walk findRows(SQLite::Database &database, const IdQuery &query, const RecordFilters &filters,
              TaskMonitor &task, FoundRows &found);

} // namespace nv
