#pragma once

#include "views/table/TableLayout.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

class QTableView;

namespace nv {

class UrlModel;

/// How wide columns have to be for what they hold: measured on rows from all over the list, shared
/// out over the room that there is. Where it is scarce, long addresses and titles give way first,
/// then titles and hosts, then all addresses, and at last other texts; addresses get what is left.
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
    /// What gives way, one after the other.
    enum class Turn { longAddresses, longTitles, titlesAndHosts, addresses, allTexts };

    bool yields(const TableLayout &layout, UrlColumn column) const;
    /// The width that a column keeps in a turn; nothing where it doesn't give way in it.
    std::optional<int> kept(const TableLayout &layout, UrlColumn column, Turn turn,
                            const QTableView &grid) const;
    /// Makes the columns as much narrower as they have to be, with no turn after `last`; false, and
    /// nothing is changed, where they don't fit even then.
    bool cutTo(int room, std::span<const UrlColumn> columns, Turn last, const TableLayout &layout,
               const QTableView &grid, Widths &widths) const;
    int wanted(const UrlModel &model, UrlColumn column, const QTableView &grid) const;

    bool m_measured = false;
    Widths m_wanted{};
    Widths m_usual{}; ///< of columns that give way: what most of their cells want
};

} // namespace nv
