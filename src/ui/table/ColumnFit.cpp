#include "ui/table/ColumnFit.h"

#include "ui/table/UrlModel.h"

#include <QAbstractItemDelegate>
#include <QHeaderView>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTableView>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace nv {

namespace {

/// The first widths, those of kUrlColumns, were chosen for a font whose digits are so many pixels
/// wide.
constexpr double kDigitWidth = 6;

/// How much wider the window's font is.
double fontScale(const QWidget &widget) {
    return std::max(1.0, widget.fontMetrics().horizontalAdvance(u'0') / kDigitWidth);
}

/// In average characters.
struct Bounds {
    int least = 0; ///< 0: the column doesn't give way
    int most = 0;
    int turn = 0; ///< in which it gives way: an address tells more than the host that it holds
};
constexpr int kTurns = 2;

Bounds boundsOf(UrlColumn column) {
    switch (column) {
    case UrlColumn::Value:
    case UrlColumn::RawValue:
        return {24, 90, 1};
    case UrlColumn::WebpageTitle:
        return {20, 46};
    case UrlColumn::Host:
        return {22, 34};
    default:
        return {0, 60};
    }
}

/// The first screen, and some rows from each quarter of the list.
std::vector<int> rowsToMeasure(int count) {
    constexpr int kFirst = 48;
    constexpr int kEach = 16;
    constexpr int kParts = 4;
    std::vector<int> rows;
    rows.reserve(kFirst + kEach * kParts);
    for (int row = 0; row < std::min(count, kFirst); ++row)
        rows.push_back(row);
    for (int part = 1; part <= kParts; ++part)
        for (int row = count / kParts * part - kEach; row < count / kParts * part; ++row)
            if (row >= kFirst)
                rows.push_back(row);
    return rows;
}

int marginsOf(const QTableView &grid) {
    return 2 * (grid.style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &grid) + 1) +
           grid.fontMetrics().averageCharWidth();
}

/// The header sets room for the sign of an order aside in all sections as soon as one has it.
int headingWidth(QHeaderView &header, int section) {
    const bool hasSign = header.isSortIndicatorShown();
    header.setSortIndicatorShown(hasSign && header.sortIndicatorSection() == section);
    const int width = header.sectionSizeHint(section);
    header.setSortIndicatorShown(hasSign);
    return width;
}

/// Of a cell that its delegate draws: a picture, a tick or the pills of tags.
int drawnWidth(const QTableView &grid, const QModelIndex &cell) {
    QStyleOptionViewItem option;
    option.initFrom(&grid);
    option.decorationSize = QSize(1, 1) * grid.style()->pixelMetric(QStyle::PM_SmallIconSize);
    return grid.itemDelegateForIndex(cell)->sizeHint(option, cell).width();
}

int cellWidth(const QTableView &grid, const QModelIndex &cell) {
    const QString text = cell.data().toString();
    return UrlModel::columnOf(cell.column()) == UrlColumn::TagNames && !text.isEmpty()
               ? drawnWidth(grid, cell)
               : grid.fontMetrics().horizontalAdvance(text) + marginsOf(grid);
}

int mostOf(UrlColumn column, const QTableView &grid) {
    return boundsOf(column).most * grid.fontMetrics().averageCharWidth();
}

/// All of its cells are as wide as each other.
bool hasOneWidth(UrlColumn column) {
    return column == UrlColumn::Tag || column == UrlColumn::Icon;
}

} // namespace

int ColumnFit::pixels(int twips, const QTableView &grid) {
    return qRound(pixelsOf(twips) * fontScale(grid));
}

int ColumnFit::twips(int pixels, const QTableView &grid) {
    return qRound(pixels / fontScale(grid)) * kTwipsPerPixel;
}

int ColumnFit::wanted(const UrlModel &model, UrlColumn column, const QTableView &grid) const {
    const int section = UrlModel::sectionOf(column);
    int width = headingWidth(*grid.horizontalHeader(), section);
    if (hasOneWidth(column))
        return model.rowCount() > 0 ? std::max(width, drawnWidth(grid, model.index(0, section)))
                                    : width;
    for (const int row : rowsToMeasure(model.rowCount()))
        width = std::max(width, cellWidth(grid, model.index(row, section)));
    return std::min(width, mostOf(column, grid));
}

void ColumnFit::measure(const UrlModel &model, const TableLayout &layout, const QTableView &grid) {
    for (const UrlColumn column : layout.shownColumns())
        if (layout.isFitted(column))
            m_wanted.at(indexOf(column)) = wanted(model, column, grid);
    m_measured = true;
}

bool ColumnFit::widen(const UrlModel &model, const TableLayout &layout, const QTableView &grid) {
    bool isWider = false;
    for (const UrlColumn column : layout.shownColumns()) {
        if (!layout.isFitted(column) || boundsOf(column).least > 0)
            continue;
        int &before = m_wanted.at(indexOf(column));
        const int now = wanted(model, column, grid);
        isWider |= now > before;
        before = std::max(before, now);
    }
    return isWider;
}

bool ColumnFit::widen(const UrlModel &model, const TableLayout &layout, const QTableView &grid,
                      int first, int last) {
    bool isWider = false;
    for (const UrlColumn column : layout.shownColumns()) {
        if (!layout.isFitted(column) || hasOneWidth(column) || boundsOf(column).least > 0)
            continue;
        int &wanted = m_wanted.at(indexOf(column));
        const int most = mostOf(column, grid);
        for (int row = first; row <= last && wanted < most; ++row) {
            const int width =
                std::min(cellWidth(grid, model.index(row, UrlModel::sectionOf(column))), most);
            isWider |= width > wanted;
            wanted = std::max(wanted, width);
        }
    }
    return isWider;
}

bool ColumnFit::yields(const TableLayout &layout, UrlColumn column) const {
    return layout.isFitted(column) && m_measured;
}

int ColumnFit::spare(const TableLayout &layout, UrlColumn column, const QTableView &grid) const {
    const int least = boundsOf(column).least * grid.fontMetrics().averageCharWidth();
    return yields(layout, column) && least > 0 ? std::max(0, m_wanted.at(indexOf(column)) - least)
                                               : 0;
}

bool ColumnFit::cutTo(int room, std::span<const UrlColumn> columns, const TableLayout &layout,
                      const QTableView &grid, Widths &widths) const {
    int excess = -room;
    std::array<int, kTurns> yielding{}; // pixels that columns could do without
    for (const UrlColumn column : columns) {
        excess += widths.at(indexOf(column));
        yielding.at(std::size_t(boundsOf(column).turn)) += spare(layout, column, grid);
    }
    if (excess > std::accumulate(yielding.begin(), yielding.end(), 0))
        return false;
    for (int turn = 0; turn < kTurns && excess > 0; ++turn) {
        const int all = yielding.at(std::size_t(turn));
        if (all == 0)
            continue;
        const double share = std::min(1.0, double(excess) / all);
        for (const UrlColumn column : columns)
            if (boundsOf(column).turn == turn)
                widths.at(indexOf(column)) -= int(std::ceil(spare(layout, column, grid) * share));
        excess -= all;
    }
    return true;
}

/// What can't fit anyway is scrolled to, and nothing is cut for it; but where hosts stand before
/// the address a row should be read up to that without scrolling.
ColumnFit::Widths ColumnFit::widths(const TableLayout &layout, const QTableView &grid,
                                    int room) const {
    Widths widths{};
    int total = 0;
    const std::vector<UrlColumn> shown = layout.shownColumns();
    for (const UrlColumn column : shown) {
        widths.at(indexOf(column)) = yields(layout, column)
                                         ? m_wanted.at(indexOf(column))
                                         : pixels(layout.widthTwips(column), grid);
        total += widths.at(indexOf(column));
    }
    const auto address = std::ranges::find(shown, UrlColumn::Value);
    const bool hasAddress = address != shown.end();
    const bool hasHostBefore = std::find(shown.begin(), address, UrlColumn::Host) != address;
    if (total > room && !cutTo(room, shown, layout, grid, widths) && hasAddress && hasHostBefore)
        static_cast<void>(cutTo(room, {shown.begin(), address + 1}, layout, grid, widths));
    if (total < room && hasAddress && yields(layout, UrlColumn::Value))
        widths.at(indexOf(UrlColumn::Value)) += room - total;
    return widths;
}

} // namespace nv
