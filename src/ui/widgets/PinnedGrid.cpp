#include "ui/widgets/PinnedGrid.h"

#include "ui/widgets/PinnedHeader.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

namespace nv {

PinnedGrid::PinnedGrid(std::function<bool(int)> isPinned, QWidget *parent)
    : QTableView(parent), m_header(new PinnedHeader(std::move(isPinned))) {
    setHorizontalHeader(m_header);
}

QModelIndex PinnedGrid::indexAt(const QPoint &place) const {
    const int section = m_header->sectionAt(place.x());
    if (section < 0 || !m_header->stuckColumn(section))
        return QTableView::indexAt(place);
    const int row = rowAt(place.y());
    return row < 0 ? QModelIndex() : model()->index(row, section);
}

QRect PinnedGrid::visualRect(const QModelIndex &index) const {
    const auto column = m_header->stuckColumn(index.column());
    if (!index.isValid() || !column)
        return QTableView::visualRect(index);
    return {column->left(), rowViewportPosition(index.row()), column->width(),
            rowHeight(index.row())};
}

void PinnedGrid::scrollTo(const QModelIndex &index, ScrollHint hint) {
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

void PinnedGrid::paintEvent(QPaintEvent *event) {
    QTableView::paintEvent(event);
    const int covered = m_header->stuckWidth();
    if (covered == 0)
        return;
    QPainter painter(viewport());
    const int edge = isRightToLeft() ? viewport()->width() - covered : covered;
    painter.fillRect(isRightToLeft() ? edge : 0, 0, covered, viewport()->height(),
                     palette().base());
    const int last = rowAt(event->rect().bottom());
    const int end = last < 0 ? model()->rowCount() - 1 : last;
    for (int row = rowAt(event->rect().top()); row >= 0 && row <= end; ++row)
        paintPinned(painter, row);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(edge, 0, edge, viewport()->height());
}

void PinnedGrid::paintPinned(QPainter &painter, int row) const {
    for (const PinnedHeader::Stuck &each : m_header->stuck()) {
        const QModelIndex cell = model()->index(row, each.section);
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
void PinnedGrid::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    if (dx == 0)
        return;
    viewport()->update();
    m_header->viewport()->update();
}

} // namespace nv
