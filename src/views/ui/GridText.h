#pragma once

#include "base/TaskMonitor.h"
#include "views/UrlColumns.h"

#include <QString>

#include <cstddef>
#include <optional>

namespace nv {

class UrlGrid;
class UrlTable;

/// What leaves the grid of records as text.
class GridText {
  public:
    /// `table` is what the grid shows; both must outlive this.
    GridText(const UrlGrid &grid, UrlTable &table) : m_grid(grid), m_table(table) {}

    /// The current cell's whole text.
    QString currentCell() const;
    /// The selected rows, shown columns in their order, divided by tabs, with the headings above. A
    /// tab or line break inside of a cell is a blank. Nothing when the task was cancelled.
    std::optional<QString> selectedRows(TaskMonitor &task) const;

  private:
    QString copyText(std::size_t place, UrlColumn column) const;

    const UrlGrid &m_grid;
    UrlTable &m_table;
};

} // namespace nv
