#pragma once

#include "base/TaskMonitor.h"
#include "views/rows/IdLoader.h"

#include <cstdint>
#include <span>

namespace SQLite {
class Database;
}

namespace nv {

/// Makes `URLSortTable` the list of the rows that a report is to hold: those of `ids`, with
/// `tagged` only the ones that are ticked. Rows that can't be read take part without a date: nobody
/// knows whether they have the tick, and their entries say so. All of them, or after a cancel none.
/// Throws what the project can't do.
enum class ReportRows { all, tagged };
Walk fillSortTable(SQLite::Database &project, std::span<const std::int32_t> ids, ReportRows rows,
                   TaskMonitor &task);

/// How many rows that list holds.
std::int64_t rowsReported(SQLite::Database &project);

enum class DateOrder { oldestFirst, newestFirst };
/// The rows of `URLSortTable` by their local date, equal ones by id. Throws what the project can't
/// do.
RowIds sortedRows(SQLite::Database &project, DateOrder order);

} // namespace nv
