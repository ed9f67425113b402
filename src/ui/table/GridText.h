#pragma once

#include "base/TaskMonitor.h"
#include "reports/exports/CopiedRows.h"
#include "views/rows/UrlColumns.h"

#include <QString>

#include <cstddef>
#include <functional>
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
    /// The same columns with values for programs: dates in ISO 8601, whole texts.
    std::optional<QString> selectedRowsAs(CopyForm form, TaskMonitor &task) const;
    /// The addresses of the selected rows, a line each, that no click follows.
    std::optional<QString> defangedAddresses(TaskMonitor &task) const;

  private:
    /// False when the task was cancelled.
    bool forEachSelected(TaskMonitor &task, const std::function<void(std::size_t)> &take) const;
    QString copyText(std::size_t place, UrlColumn column) const;

    const UrlGrid &m_grid;
    UrlTable &m_table;
};

} // namespace nv
