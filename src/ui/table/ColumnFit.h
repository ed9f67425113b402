#pragma once

#include "views/table/TableLayout.h"

#include <array>
#include <span>

class QTableView;

namespace nv {

class UrlModel;

/// How wide columns have to be for what they hold: measured on rows from all over the list, shared
/// out over the room that there is. Addresses, titles and hosts give way when it is scarce, and
/// addresses get what is left.
class ColumnFit {
  public:
    /// Looks at a few screens of rows.
    void measure(const UrlModel &model, const TableLayout &layout, const QTableView &grid);
    /// Looks at rows from `first` to `last` (0-based), which have come into sight: columns that
    /// don't give way are to hold them too. True when one has to be wider than before.
    bool widen(const UrlModel &model, const TableLayout &layout, const QTableView &grid, int first,
               int last);
    /// The same for all rows, whose texts have changed: looks at a few screens of them.
    bool widen(const UrlModel &model, const TableLayout &layout, const QTableView &grid);
    bool isMeasured() const { return m_measured; }
    /// Pixels of each shown column, fitted or not, in `room` pixels.
    using Widths = std::array<int, kTableColumnCount>;
    Widths widths(const TableLayout &layout, const QTableView &grid, int room) const;
    /// Pixels of a width that the examiner has given, in the window's font.
    static int pixels(int twips, const QTableView &grid);
    static int twips(int pixels, const QTableView &grid);

  private:
    bool yields(const TableLayout &layout, UrlColumn column) const;
    int spare(const TableLayout &layout, UrlColumn column, const QTableView &grid) const;
    /// Makes the columns as much narrower as they have to be; false, and nothing is changed, where
    /// they don't fit even then.
    bool cutTo(int room, std::span<const UrlColumn> columns, const TableLayout &layout,
               const QTableView &grid, Widths &widths) const;
    int wanted(const UrlModel &model, UrlColumn column, const QTableView &grid) const;

    bool m_measured = false;
    std::array<int, kTableColumnCount> m_wanted{};
};

} // namespace nv
