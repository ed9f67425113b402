#include "ui/table/ColumnFit.h"

#include "ui/table/UrlModel.h"

#include <QAbstractItemDelegate>
#include <QHeaderView>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTableView>

#include <algorithm>
#include <cmath>
#include <utility>

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
    int least = 0; ///< 0: the column doesn't give way while others can
    int most = 0;
    int scarce = 0; ///< what can be told from others by so much, where there is no room for more
};

Bounds boundsOf(UrlColumn column) {
    switch (column) {
    case UrlColumn::Value:
    case UrlColumn::RawValue:
        return {24, 90, 16};
    case UrlColumn::WebpageTitle:
        return {20, 46, 10};
    case UrlColumn::Host:
        return {22, 34, 10};
    default:
        return {0, 60, 8};
    }
}

bool isAddress(UrlColumn column) {
    return column == UrlColumn::Value || column == UrlColumn::RawValue;
}

/// A date or a number that is cut is another one.
bool isText(UrlColumn column) {
    const CellRule rule = factsOf(column).rule;
    return rule == CellRule::Text || rule == CellRule::Type;
}

/// Of cells: most are no wider than that.
int usualOf(std::vector<int> widths) {
    constexpr std::ptrdiff_t kOfTen = 8;
    if (widths.empty())
        return 0;
    const auto usual = widths.begin() + (std::ssize(widths) - 1) * kOfTen / 10;
    std::ranges::nth_element(widths, usual);
    return *usual;
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

std::vector<int> cellWidths(const UrlModel &model, UrlColumn column, const QTableView &grid) {
    std::vector<int> widths;
    for (const int row : rowsToMeasure(model.rowCount()))
        widths.push_back(cellWidth(grid, model.index(row, UrlModel::sectionOf(column))));
    return widths;
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
    for (const int each : cellWidths(model, column, grid))
        width = std::max(width, each);
    return std::min(width, mostOf(column, grid));
}

void ColumnFit::measure(const UrlModel &model, const TableLayout &layout, const QTableView &grid) {
    for (const UrlColumn column : layout.shownColumns()) {
        if (layout.isFitted(column))
            m_wanted.at(indexOf(column)) = wanted(model, column, grid);
        if (layout.isFitted(column) && boundsOf(column).least > 0)
            m_usual.at(indexOf(column)) = usualOf(cellWidths(model, column, grid));
    }
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

std::optional<int> ColumnFit::kept(const TableLayout &layout, UrlColumn column, Turn turn,
                                   const QTableView &grid) const {
    if (!yields(layout, column) || !isText(column))
        return std::nullopt;
    const Bounds bounds = boundsOf(column);
    const int letter = grid.fontMetrics().averageCharWidth();
    const int least = bounds.least * letter;
    const int usual = std::max(least, m_usual.at(indexOf(column)));
    switch (turn) {
    case Turn::longAddresses:
        return isAddress(column) ? std::optional(usual) : std::nullopt;
    case Turn::longTitles:
        return column == UrlColumn::WebpageTitle ? std::optional(usual) : std::nullopt;
    case Turn::titlesAndHosts:
        return least > 0 && !isAddress(column) ? std::optional(least) : std::nullopt;
    case Turn::addresses:
        return isAddress(column) ? std::optional(least) : std::nullopt;
    case Turn::allTexts:
        return bounds.scarce * letter;
    }
    return std::nullopt;
}

bool ColumnFit::cutTo(int room, std::span<const UrlColumn> columns, Turn last,
                      const TableLayout &layout, const QTableView &grid, Widths &widths) const {
    Widths cut = widths;
    int excess = -room;
    for (const UrlColumn column : columns)
        excess += cut.at(indexOf(column));
    for (const Turn turn : {Turn::longAddresses, Turn::longTitles, Turn::titlesAndHosts,
                            Turn::addresses, Turn::allTexts}) {
        if (excess <= 0 || turn > last)
            break;
        std::vector<std::pair<UrlColumn, int>> spares; // pixels that a column can do without
        int all = 0;
        for (const UrlColumn column : columns)
            if (const auto width = kept(layout, column, turn, grid)) {
                spares.emplace_back(column, std::max(0, cut.at(indexOf(column)) - *width));
                all += spares.back().second;
            }
        const double share = all == 0 ? 0 : std::min(1.0, double(excess) / all);
        for (const auto &[column, spare] : spares)
            cut.at(indexOf(column)) -= int(std::ceil(spare * share));
        excess -= all;
    }
    if (excess > 0)
        return false;
    widths = cut;
    return true;
}

/// What can't fit anyway is scrolled to, and nothing is cut for it; but where hosts stand before
/// the address a row should be read up to that without scrolling.
ColumnFit::Widths ColumnFit::widths(const TableLayout &layout, const QTableView &grid,
                                    int room) const {
    Widths widths{};
    const std::vector<UrlColumn> shown = layout.shownColumns();
    for (const UrlColumn column : shown)
        widths.at(indexOf(column)) = yields(layout, column)
                                         ? m_wanted.at(indexOf(column))
                                         : pixels(layout.widthTwips(column), grid);
    const auto address = std::ranges::find(shown, UrlColumn::Value);
    const bool hasAddress = address != shown.end();
    const bool hasHostBefore = std::find(shown.begin(), address, UrlColumn::Host) != address;
    const auto cut = [&](std::span<const UrlColumn> columns, Turn last) {
        return cutTo(room, columns, last, layout, grid, widths);
    };
    if (!cut(shown, Turn::addresses) && hasAddress && hasHostBefore &&
        !cut({shown.begin(), address + 1}, Turn::addresses))
        static_cast<void>(cut({shown.begin(), address + 1}, Turn::allTexts));
    int rest = room;
    for (const UrlColumn column : shown)
        rest -= widths.at(indexOf(column));
    if (rest > 0 && hasAddress && yields(layout, UrlColumn::Value))
        widths.at(indexOf(UrlColumn::Value)) += rest;
    return widths;
}

} // namespace nv
