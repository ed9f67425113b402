#include "ui/widgets/TickHeader.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionButton>

namespace nv {

namespace {

constexpr int kMargin = 4; // pixels beside the box

int boxWidth(const QWidget *widget) {
    return widget->style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, widget);
}

} // namespace

TickHeader::TickHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent) {
    setFocusPolicy(Qt::StrongFocus);
}

void TickHeader::setTicked(bool ticked) {
    m_ticked = ticked;
    viewport()->update();
}

void TickHeader::flip() {
    setTicked(!m_ticked);
    emit flipped(m_ticked);
}

/// The heading moves aside for the box.
void TickHeader::paintSection(QPainter *painter, const QRect &place, int section) const {
    if (section != 0)
        return QHeaderView::paintSection(painter, place, section);
    const int width = boxWidth(this);
    const int aside = width + 2 * kMargin;
    QStyleOptionHeader heading;
    initStyleOption(&heading);
    heading.rect = place;
    heading.section = section;
    painter->save();
    style()->drawControl(QStyle::CE_HeaderSection, &heading, painter, this);
    painter->restore();
    painter->drawText(place.adjusted(aside, 0, -kMargin, 0), Qt::AlignVCenter | Qt::AlignLeft,
                      model()->headerData(section, Qt::Horizontal).toString());
    QStyleOptionButton box;
    box.initFrom(this);
    box.rect = QRect(place.left() + kMargin, place.center().y() - width / 2, width, width);
    box.state.setFlag(m_ticked ? QStyle::State_On : QStyle::State_Off);
    box.state.setFlag(QStyle::State_HasFocus, false);
    style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, this);
}

QSize TickHeader::sectionSizeFromContents(int section) const {
    QSize size = QHeaderView::sectionSizeFromContents(section);
    if (section == 0)
        size.rwidth() += boxWidth(this) + 2 * kMargin;
    return size;
}

void TickHeader::mouseReleaseEvent(QMouseEvent *event) {
    QHeaderView::mouseReleaseEvent(event);
    const bool resizes = cursor().shape() == Qt::SplitHCursor;
    if (event->button() == Qt::LeftButton && !resizes &&
        logicalIndexAt(event->position().toPoint()) == 0)
        flip();
}

void TickHeader::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Space)
        flip();
    else
        QHeaderView::keyPressEvent(event);
}

} // namespace nv
