// The columns that stay in sight while the grid scrolls sideways.
#include "views/ui/PinnedHeader.h"
#include "views/ui/UrlGrid.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

namespace nv {

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

QModelIndex UrlGrid::indexAt(const QPoint &place) const {
    const int section = m_header->sectionAt(place.x());
    if (section < 0 || !m_header->stuckColumn(section))
        return QTableView::indexAt(place);
    const int row = rowAt(place.y());
    return row < 0 ? QModelIndex() : m_model.index(row, section);
}

QRect UrlGrid::visualRect(const QModelIndex &index) const {
    const auto column = m_header->stuckColumn(index.column());
    if (!index.isValid() || !column)
        return QTableView::visualRect(index);
    return {column->left(), rowViewportPosition(index.row()), column->width(),
            rowHeight(index.row())};
}

void UrlGrid::scrollTo(const QModelIndex &index, ScrollHint hint) {
    const int before = horizontalScrollBar()->value();
    const bool isSeen = index.isValid() && m_header->stuckColumn(index.column());
    QTableView::scrollTo(index, hint);
    if (isSeen)
        horizontalScrollBar()->setValue(before);
    if (isSeen || !index.isValid())
        return;
    const int start = m_header->sectionPosition(index.column()) - m_header->offset();
    if (const int covered = m_header->stuckWidth() - start; covered > 0)
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - covered);
}

void UrlGrid::paintEvent(QPaintEvent *event) {
    QTableView::paintEvent(event);
    const int covered = m_header->stuckWidth();
    if (covered == 0)
        return;
    QPainter painter(viewport());
    const int edge = isRightToLeft() ? viewport()->width() - covered : covered;
    painter.fillRect(isRightToLeft() ? edge : 0, 0, covered, viewport()->height(),
                     palette().base());
    const int last = rowAt(event->rect().bottom());
    const int end = last < 0 ? m_model.rowCount() - 1 : last;
    for (int row = rowAt(event->rect().top()); row >= 0 && row <= end; ++row)
        paintPinned(painter, row);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(edge, 0, edge, viewport()->height());
}

void UrlGrid::paintPinned(QPainter &painter, int row) const {
    for (const PinnedHeader::Stuck &each : m_header->stuck()) {
        const QModelIndex cell = m_model.index(row, each.section);
        QStyleOptionViewItem option;
        initViewItemOption(&option);
        option.rect = visualRect(cell);
        option.state.setFlag(QStyle::State_HasFocus, hasFocus() && cell == currentIndex());
        option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(cell));
        option.features.setFlag(QStyleOptionViewItem::Alternate, row % 2 == 1);
        style()->drawPrimitive(QStyle::PE_PanelItemViewRow, &option, &painter, this);
        itemDelegateForIndex(cell)->paint(&painter, option, cell);
    }
}

/// Scrolling moves the pixels that are there, and with them those of the pinned columns.
void UrlGrid::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    if (dx == 0)
        return;
    viewport()->update();
    m_header->viewport()->update();
}

void UrlGrid::resizeEvent(QResizeEvent *event) {
    QTableView::resizeEvent(event);
    if (m_fit.isMeasured() && event->oldSize().width() != event->size().width())
        applyWidths();
}

} // namespace nv
