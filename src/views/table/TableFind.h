#pragma once

#include "base/TaskMonitor.h"
#include "views/rows/RowCells.h"
#include "views/rows/RowPager.h"
#include "views/table/FindText.h"

#include <cstddef>
#include <optional>

namespace nv {

enum class FindEnd { found, notThere, cancelled };
struct FindResult {
    FindEnd end = FindEnd::notThere;
    std::size_t place = 0;
    UrlColumn column = UrlColumn::Id;
    UnreadRows unread; ///< rows in which nobody could look
};

/// Looks for a text in the rows of a table, from one cell to the next. All rows that hold it are
/// remembered once they had to be looked for, so that the next cell is found at once.
class TableFind {
  public:
    /// What the table is made of; all must outlive this.
    TableFind(SQLite::Database &project, const RowIds &ids, RowPager &pager, RowCells &cells)
        : m_project(project), m_ids(ids), m_pager(pager), m_cells(cells) {}

    /// The next cell with the text, from the place `from` on and round. Throws what the database
    /// says.
    FindResult next(const FindText &what, std::size_t from, TaskMonitor &task);
    /// The rows are no longer what they were.
    void forget() { m_holding.reset(); }

  private:
    std::optional<FindResult> foundAmong(const FoundTexts &rows, const FindText &what,
                                         std::size_t from, std::size_t count);
    std::optional<UrlColumn> columnWith(const FindText &what, std::size_t place);

    SQLite::Database &m_project;
    const RowIds &m_ids;
    RowPager &m_pager;
    RowCells &m_cells;
    FindText m_sought;                   ///< what was looked for last
    std::optional<FoundTexts> m_holding; ///< all rows that hold it, when all were looked at
};

} // namespace nv
