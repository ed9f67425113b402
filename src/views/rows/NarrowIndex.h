#pragma once

#include "views/rows/DateIndex.h"
#include "views/rows/IdLoader.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3_value;

namespace nv {

/// Makes `URLTimeIndex` and `URLHostIndex` when the project has none: a few columns of all rows, so
/// that what is counted of millions reads some tens of bytes a row and not the row; and that of the
/// ticked rows. SQLite keeps them true, whoever writes. No statement uses them that doesn't name
/// them: what a query of the examiner's gives, and in which order, is the same with and without. A
/// cancel leaves the project without. Throws what the database says.
IndexState ensureNarrowIndexes(SQLite::Database &project, TaskMonitor &task);

/// A row as an index or the table has it, as long as it is shown.
class NarrowRow {
  public:
    NarrowRow(sqlite3_value *id, sqlite3_value **columns) : m_id(id), m_columns(columns) {}
    /// 0 where ids aren't told.
    std::int32_t id() const;
    /// Of the columns in the order in which they were asked for, from 0; empty for no value.
    std::string_view text(std::size_t column) const;
    /// Nothing for no value and for a text.
    std::optional<double> number(std::size_t column) const;
    /// Of a flag.
    bool isSet(std::size_t column) const;

  private:
    sqlite3_value *m_id;
    sqlite3_value **m_columns;
};

/// Whether who looks asks for the ids of the rows: of all rows it takes a third less without.
enum class NarrowIds : std::uint8_t { told, untold };

using Columns = std::vector<std::string_view>;

enum class NarrowWalk {
    Finished,
    Cancelled,
    /// No index has these columns, the rows are too few of all to read it, one is asked for
    /// twice, or the index is damaged: what was shown is worth nothing; the rows themselves tell.
    Impossible,
};
/// Shows what an index holds of these rows, in no order that the caller may count on. Rows that
/// aren't there aren't shown. `look` mustn't use the connection.
NarrowWalk walkNarrow(SQLite::Database &project, const Columns &columns, const RowIds &ids,
                      NarrowIds told, TaskMonitor &task,
                      const std::function<void(const NarrowRow &)> &look);

/// In which order rows are shown: for any, SQLite may read another index that has the columns.
enum class RowOrder : std::uint8_t { byId, any };
/// The same of the table: quicker than a statement that is stepped from row to row. `source` is a
/// column or an expression of some. Impossible where a row can't be read, too.
NarrowWalk walkTable(SQLite::Database &project, std::string_view source, const RowIds &ids,
                     RowOrder order, TaskMonitor &task,
                     const std::function<void(const NarrowRow &)> &look);

/// Shows each value of a column, or one of those that differ in case only, and how many of all rows
/// have it, by an index. False when that can't be: what was shown is worth nothing then.
bool countNarrow(SQLite::Database &project, std::string_view column,
                 const std::function<void(std::string_view, std::uint64_t)> &show);

/// Finds the rows, in any order, that meet a condition over these columns alone, by an index that
/// has them, else as findRows() does.
Walk findNarrow(SQLite::Database &project, const Columns &columns, const IdQuery &condition,
                TaskMonitor &task, RowIds &ids);

} // namespace nv
