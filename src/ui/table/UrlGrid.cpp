#include "ui/table/UrlGrid.h"

#include "platform/qt/QtText.h"
#include "ui/table/TagPills.h"
#include "ui/table/TickCell.h"
#include "ui/widgets/PinnedHeader.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr int kRowPadding = 8; ///< pixels

} // namespace

UrlGrid::UrlGrid(UrlModel &model, QWidget *parent)
    : PinnedGrid([this](int section) { return staysInSight(UrlModel::columnOf(section)); }, parent),
      m_model(model) {
    setObjectName(QStringLiteral("URLGrid"));
    setAccessibleName(tr("Records"));
    setModel(&m_model);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setHorizontalScrollMode(ScrollPerPixel);
    // A row's height never depends on its contents: a million rows are laid out at once.
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowPadding);
    setItemDelegateForColumn(UrlModel::sectionOf(UrlColumn::Tag), new TickCell(this));
    setItemDelegateForColumn(UrlModel::sectionOf(UrlColumn::TagNames), new TagPills(m_model, this));
    setUpHeader();
    connectHeader();
    applyLayout();
    connect(this, &QTableView::clicked, this, &UrlGrid::clickCell);
    watchSight();
}

/// Once for all that comes at a time, and after the rows have their places.
void UrlGrid::watchSight() {
    m_sight.setSingleShot(true);
    m_sight.setInterval(0);
    connect(&m_sight, &QTimer::timeout, this, &UrlGrid::widenToSight);
    const auto soon = qOverload<>(&QTimer::start);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, &m_sight, soon);
    connect(&m_model, &QAbstractItemModel::dataChanged, &m_sight, soon);
    connect(&m_model, &QAbstractItemModel::modelReset, &m_sight, soon);
}

void UrlGrid::setUpHeader() {
    QHeaderView *header = horizontalHeader();
    header->setObjectName(QStringLiteral("URLGridHeader"));
    header->setAccessibleName(tr("Headings of the records"));
    header->setSectionsMovable(true);
    header->setFirstSectionMovable(true);
    header->setSectionsClickable(true);
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    // Fitting a column looks at the rows that can be seen, not at all of them.
    header->setResizeContentsPrecision(0);
    header->setFixedHeight(2 * fontMetrics().height() + kRowPadding);
}

void UrlGrid::connectHeader() {
    QHeaderView *header = horizontalHeader();
    connect(header, &QHeaderView::sectionClicked, this, &UrlGrid::requestSort);
    connect(header, &QHeaderView::sectionHandleDoubleClicked, this,
            [this](int section) { fitColumn(UrlModel::columnOf(section)); });
    connect(header, &QHeaderView::sectionMoved, this,
            [this](int section, int, int to) { takeMove(section, to); });
    connect(header, &QHeaderView::sectionResized, this,
            [this](int section, int, int pixels) { takeWidth(section, pixels); });
    connect(header, &QWidget::customContextMenuRequested, this, [this](QPoint place) {
        const int section = pinnedHeader().sectionAt(place.x());
        if (section >= 0)
            emit headerMenuRequested(UrlModel::columnOf(section),
                                     pinnedHeader().mapToGlobal(place));
    });
}

void UrlGrid::setTableLayout(TableLayout layout) {
    m_layout = std::move(layout);
    m_fitIsDue = true;
    applyLayout();
    fitToRows();
    emit tableLayoutChanged();
}

void UrlGrid::applyLayout() {
    m_applying = true;
    QHeaderView *header = horizontalHeader();
    for (std::size_t place = 0; place < m_layout.order().size(); ++place) {
        const UrlColumn column = m_layout.order()[place];
        const int section = UrlModel::sectionOf(column);
        header->moveSection(header->visualIndex(section), static_cast<int>(place));
        header->setSectionHidden(section, m_layout.hidden(column));
    }
    m_applying = false;
    applyWidths();
    if (UrlTable *table = m_model.table())
        table->showColumns(m_layout.shownColumns());
}

void UrlGrid::applyWidths() {
    m_applying = true;
    const auto widths = m_fit.widths(m_layout, *this, viewport()->width());
    for (const UrlColumn column : m_layout.shownColumns())
        pinnedHeader().resizeSection(UrlModel::sectionOf(column), widths.at(indexOf(column)));
    m_applying = false;
    viewport()->update();
}

void UrlGrid::fitToRows() {
    if (m_model.rowCount() == 0)
        return;
    const QString zone =
        m_model
            .headerData(UrlModel::sectionOf(UrlColumn::LocalDate), Qt::Horizontal, Qt::DisplayRole)
            .toString();
    const bool isOtherZone = std::exchange(m_zone, zone) != zone;
    if (m_fitIsDue)
        m_fit.measure(m_model, m_layout, *this);
    else if (!isOtherZone || !m_fit.widen(m_model, m_layout, *this))
        return;
    m_fitIsDue = false;
    applyWidths();
}

/// A value that stands in few rows isn't among those that were measured, and a zone, a tag or a
/// note may make texts longer. Columns only grow, and only with rows that have just come.
void UrlGrid::widenToSight() {
    const int first = rowAt(0);
    if (first < 0 || !m_fit.isMeasured() || !isVisible())
        return;
    const int last = std::min(first + rowsInSight(), m_model.rowCount() - 1);
    if (m_fit.widen(m_model, m_layout, *this, first, last))
        applyWidths();
}

/// A part of one counts.
int UrlGrid::rowsInSight() const {
    return viewport()->height() / std::max(1, verticalHeader()->defaultSectionSize()) + 1;
}

void UrlGrid::fitColumn(UrlColumn column) {
    m_layout.fit(column);
    m_fitIsDue = true;
    fitToRows();
}

void UrlGrid::fitAllColumns() {
    for (const UrlColumn column : m_layout.shownColumns())
        m_layout.fit(column);
    m_fitIsDue = true;
    fitToRows();
}

void UrlGrid::hideColumn(UrlColumn column) {
    m_layout.setHidden(column, true);
    applyLayout();
    emit tableLayoutChanged();
}

void UrlGrid::takeMove(int section, int to) {
    if (m_applying)
        return;
    m_layout.move(UrlModel::columnOf(section), to);
    emit tableLayoutChanged();
}

void UrlGrid::takeWidth(int section, int pixels) {
    if (m_applying || pixels <= 0)
        return;
    m_layout.setWidthTwips(UrlModel::columnOf(section), ColumnFit::twips(pixels, *this));
    viewport()->update();
}

/// The tick and the date of the event are what every row is known by. "Action Date
/// [Local]" leaves old dates out (docs/guide/limits.md), so another one is preferred.
bool UrlGrid::staysInSight(UrlColumn column) const {
    if (column == UrlColumn::Tag)
        return true;
    for (const UrlColumn date :
         {UrlColumn::LocalDate, UrlColumn::ActionDateUtc, UrlColumn::ActionDateLocal})
        if (!m_layout.hidden(date))
            return column == date;
    return false;
}

void UrlGrid::resizeEvent(QResizeEvent *event) {
    const QModelIndex current = currentIndex();
    const int top = current.isValid() ? rowViewportPosition(current.row()) : -1;
    const bool wasInSight = top >= 0 && top < event->oldSize().height();
    PinnedGrid::resizeEvent(event);
    if (m_fit.isMeasured() && event->oldSize().width() != event->size().width())
        applyWidths();
    m_sight.start();
    // Chips and the bar of time take lines of the table away.
    if (wasInSight && event->size().height() < event->oldSize().height())
        scrollTo(current);
}

/// The style's own frame of the current cell can't be told from the ground of a chosen row; but
/// keys are the column's too.
void UrlGrid::paintEvent(QPaintEvent *event) {
    PinnedGrid::paintEvent(event);
    const QModelIndex current = currentIndex();
    if (!current.isValid() || !hasFocus())
        return;
    QPainter painter(viewport());
    if (const int covered = pinnedHeader().stuckWidth();
        !pinnedHeader().stuckColumn(current.column()))
        painter.setClipRect(isRightToLeft() ? viewport()->rect().adjusted(0, 0, -covered, 0)
                                            : viewport()->rect().adjusted(covered, 0, 0, 0));
    painter.setPen(palette().color(selectionModel()->isSelected(current) ? QPalette::HighlightedText
                                                                         : QPalette::Text));
    painter.drawRect(visualRect(current).adjusted(1, 1, -2, -2));
}

void UrlGrid::requestSort(int section) {
    const UrlColumn column = UrlModel::columnOf(section);
    const UrlTable *table = m_model.table();
    if (!table || !isSortable(column))
        return;
    const auto &now = table->columnSort();
    const bool turnRound =
        now && now->column == column && now->direction == SortDirection::Ascending;
    emit sortRequested(column, turnRound ? SortDirection::Descending : SortDirection::Ascending);
}

void UrlGrid::showSort(const std::optional<ColumnSort> &sort) {
    horizontalHeader()->setSortIndicatorShown(sort.has_value());
    if (sort)
        horizontalHeader()->setSortIndicator(
            UrlModel::sectionOf(sort->column),
            sort->direction == SortDirection::Ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

std::optional<UrlId> UrlGrid::currentUrl() const {
    const QModelIndex current = currentIndex();
    if (!m_model.table() || !current.isValid())
        return std::nullopt;
    const UrlId id = m_model.table()->idAt(static_cast<std::size_t>(current.row()));
    return id == UrlId::none ? std::nullopt : std::optional(id);
}

RowIds UrlGrid::selectedUrls() const {
    RowIds ids;
    const UrlTable *table = m_model.table();
    if (!table)
        return ids;
    ids.reserve(static_cast<std::size_t>(selectedRowCount()));
    for (const QItemSelectionRange &range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            ids.push_back(
                static_cast<std::int32_t>(number(table->idAt(static_cast<std::size_t>(row)))));
    if (const auto current = currentUrl(); ids.empty() && current)
        ids.push_back(static_cast<std::int32_t>(number(*current)));
    return ids;
}

bool UrlGrid::setCurrentUrl(UrlId id) {
    const auto place = m_model.table() ? m_model.table()->placeOf(id) : std::nullopt;
    if (!place)
        return false;
    const int section = currentIndex().isValid() ? currentIndex().column()
                                                 : std::max(0, pinnedHeader().sectionAt(0));
    const int sideways = horizontalScrollBar()->value();
    executeDelayedItemsLayout(); // the scroll bar may still be that of fewer rows
    setCurrentIndex(m_model.index(static_cast<int>(*place), section));
    horizontalScrollBar()->setValue(sideways); // another row, but the columns that were looked at
    return true;
}

std::optional<UrlGrid::Spot> UrlGrid::currentSpot() const {
    const auto id = currentUrl();
    if (!id)
        return std::nullopt;
    const int above = currentIndex().row() - verticalScrollBar()->value();
    return Spot{*id, above + 1 < rowsInSight() ? above : -1};
}

bool UrlGrid::goTo(const Spot &spot) {
    if (!setCurrentUrl(spot.id))
        return false;
    const int above = spot.rowsAbove >= 0 ? spot.rowsAbove : (rowsInSight() - 1) / 2;
    verticalScrollBar()->setValue(currentIndex().row() - above);
    return true;
}

int UrlGrid::selectedRowCount() const {
    int count = 0;
    for (const QItemSelectionRange &range : selectionModel()->selection())
        count += range.height();
    return count;
}

FindResult UrlGrid::find(const QString &text, int fromRow, TaskMonitor &task) const {
    if (!m_model.table())
        return {};
    return m_model.table()->find({fromQt(text), m_layout.shownColumns()},
                                 static_cast<std::size_t>(fromRow), task);
}

QModelIndex UrlGrid::cellOf(const FindResult &found) const {
    return m_model.index(static_cast<int>(found.place), UrlModel::sectionOf(found.column));
}

void UrlGrid::clickCell(const QModelIndex &cell) {
    // With Ctrl or Shift the click builds a selection, whose rows the space key tags.
    if (cell.column() == UrlModel::sectionOf(UrlColumn::Tag) &&
        QGuiApplication::keyboardModifiers() == Qt::NoModifier)
        emit tagFlipRequested();
}

void UrlGrid::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier)
        emit tagFlipRequested();
    else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
             (event->modifiers() & ~Qt::KeypadModifier) == 0 && currentIndex().isValid())
        emit pageWanted();
    else if (const int digit = event->key() - Qt::Key_0;
             digit >= 1 && digit <= 9 && (event->modifiers() & ~Qt::KeypadModifier) == 0)
        emit tagKeyPressed(digit);
    else if (event->key() == Qt::Key_Up && event->modifiers() == Qt::AltModifier)
        askForHeaderMenu();
    else
        PinnedGrid::keyPressEvent(event);
}

/// Of the current cell's column, below its heading.
void UrlGrid::askForHeaderMenu() {
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return;
    scrollTo(current);
    const int left = std::max(0, visualRect(current).left());
    emit headerMenuRequested(UrlModel::columnOf(current.column()),
                             viewport()->mapToGlobal(QPoint(left, 0)));
}

/// With Ctrl the toolkit would go to the first or last row and leave the old one chosen.
QItemSelectionModel::SelectionFlags UrlGrid::selectionCommand(const QModelIndex &index,
                                                              const QEvent *event) const {
    if (event && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<const QKeyEvent *>(event);
        const bool toAnEnd = key->key() == Qt::Key_Home || key->key() == Qt::Key_End;
        if (toAnEnd && key->modifiers() == Qt::ControlModifier)
            return QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
    }
    return PinnedGrid::selectionCommand(index, event);
}

void UrlGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous) {
    PinnedGrid::currentChanged(current, previous);
    if (current.row() != previous.row())
        emit currentUrlChanged();
}

void UrlGrid::flipSelectedTags(TaskMonitor &task) {
    const QModelIndex current = currentIndex();
    UrlTable *table = m_model.table();
    if (!table || !current.isValid())
        return;
    if (selectedRowCount() <= 1) {
        m_model.flipTag(current.row());
        return;
    }
    const bool tagged = !table->isTagged(static_cast<std::size_t>(current.row()));
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        if (!table->setTagged(static_cast<std::size_t>(range.top()),
                              static_cast<std::size_t>(range.height()), tagged, task))
            break;
    }
    m_model.ticksChanged();
}

} // namespace nv
