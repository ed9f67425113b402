#include "ui/widgets/PinnedHeader.h"

#include <QMouseEvent>
#include <QPainter>

namespace nv {

namespace {

QMouseEvent moved(const QMouseEvent &event, int pixels) {
    const QPointF aside(pixels, 0);
    return {event.type(),           event.position() + aside, event.scenePosition() + aside,
            event.globalPosition(), event.button(),           event.buttons(),
            event.modifiers(),      event.pointingDevice()};
}

} // namespace

PinnedHeader::PinnedHeader(std::function<bool(int)> isPinned, QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent), m_isPinned(std::move(isPinned)) {}

std::vector<PinnedHeader::Stuck> PinnedHeader::stuck() const {
    std::vector<Stuck> all;
    const int most = viewport()->width() * 2 / 3;
    int covered = 0;
    for (int place = 0; place < count() && offset() > 0; ++place) {
        const int section = logicalIndex(place);
        if (isSectionHidden(section) || !m_isPinned(section))
            continue;
        const int width = sectionSize(section);
        if (sectionPosition(section) - offset() >= covered || covered + width > most)
            break;
        all.push_back({section, covered, width});
        covered += width;
    }
    return all;
}

int PinnedHeader::stuckWidth() const {
    const auto all = stuck();
    return all.empty() ? 0 : all.back().left + all.back().width;
}

QRect PinnedHeader::rectOf(const Stuck &each) const {
    const int left = isRightToLeft() ? viewport()->width() - each.left - each.width : each.left;
    return {left, 0, each.width, viewport()->height()};
}

std::optional<QRect> PinnedHeader::stuckColumn(int section) const {
    for (const Stuck &each : stuck())
        if (each.section == section)
            return rectOf(each);
    return std::nullopt;
}

std::optional<PinnedHeader::Stuck> PinnedHeader::stuckAt(int x) const {
    for (const Stuck &each : stuck())
        if (const QRect place = rectOf(each); x >= place.left() && x <= place.right())
            return each;
    return std::nullopt;
}

int PinnedHeader::sectionAt(int x) const {
    const auto over = stuckAt(x);
    return over ? over->section : logicalIndexAt(x);
}

/// How far from what is seen at x the section lies that it is.
int PinnedHeader::shiftAt(int x) const {
    const auto over = stuckAt(x);
    return over ? sectionViewportPosition(over->section) - rectOf(*over).left() : 0;
}

void PinnedHeader::paintEvent(QPaintEvent *event) {
    QHeaderView::paintEvent(event);
    QPainter painter(viewport());
    for (const Stuck &each : stuck()) {
        painter.fillRect(rectOf(each), palette().button());
        painter.save();
        paintSection(&painter, rectOf(each), each.section);
        painter.restore();
    }
}

// The toolkit knows sections by where they would be, so events go there.
void PinnedHeader::mousePressEvent(QMouseEvent *event) {
    m_shift = shiftAt(event->position().toPoint().x());
    QMouseEvent there = moved(*event, m_shift);
    const bool wasMovable = sectionsMovable();
    if (m_shift != 0)
        setSectionsMovable(false); // the place to drop it at would be another than is seen
    QHeaderView::mousePressEvent(&there);
    setSectionsMovable(wasMovable);
}

void PinnedHeader::mouseMoveEvent(QMouseEvent *event) {
    const bool pressed = event->buttons() != Qt::NoButton;
    QMouseEvent there = moved(*event, pressed ? m_shift : shiftAt(event->position().toPoint().x()));
    QHeaderView::mouseMoveEvent(&there);
}

void PinnedHeader::mouseReleaseEvent(QMouseEvent *event) {
    QMouseEvent there = moved(*event, m_shift);
    QHeaderView::mouseReleaseEvent(&there);
    m_shift = 0;
}

void PinnedHeader::mouseDoubleClickEvent(QMouseEvent *event) {
    QMouseEvent there = moved(*event, shiftAt(event->position().toPoint().x()));
    QHeaderView::mouseDoubleClickEvent(&there);
}

} // namespace nv
