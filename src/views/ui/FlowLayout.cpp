#include "views/ui/FlowLayout.h"

#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace nv {

FlowLayout::~FlowLayout() {
    qDeleteAll(m_items);
}

void FlowLayout::addItem(QLayoutItem *item) {
    m_items.push_back(item);
}

QLayoutItem *FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem *FlowLayout::takeAt(int index) {
    QLayoutItem *item = itemAt(index);
    if (item)
        m_items.erase(m_items.begin() + index);
    return item;
}

int FlowLayout::gap() const {
    if (spacing() >= 0)
        return spacing();
    const QWidget *parent = parentWidget();
    return parent
               ? parent->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing, nullptr, parent)
               : 0;
}

std::vector<FlowLayout::Line> FlowLayout::linesFor(int width) const {
    std::vector<Line> lines;
    for (QLayoutItem *item : m_items) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint();
        if (lines.empty() || lines.back().width + gap() + size.width() > width)
            lines.emplace_back();
        Line &line = lines.back();
        line.width += (line.items.empty() ? 0 : gap()) + size.width();
        line.height = std::max(line.height, size.height());
        line.items.push_back(item);
    }
    return lines;
}

int FlowLayout::heightForWidth(int width) const {
    const QMargins around = contentsMargins();
    int height = around.top() + around.bottom();
    const auto lines = linesFor(width - around.left() - around.right());
    for (const Line &line : lines)
        height += line.height;
    return height + gap() * std::max(0, static_cast<int>(lines.size()) - 1);
}

QSize FlowLayout::sizeHint() const {
    const QMargins around = contentsMargins();
    int width = around.left() + around.right();
    int height = 0;
    for (const Line &line : linesFor(QWIDGETSIZE_MAX)) {
        width += line.width;
        height += line.height;
    }
    return {width, height + around.top() + around.bottom()};
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const QLayoutItem *item : m_items)
        if (!item->isEmpty())
            size = size.expandedTo(item->minimumSize());
    const QMargins around = contentsMargins();
    return size + QSize(around.left() + around.right(), around.top() + around.bottom());
}

void FlowLayout::setGeometry(const QRect &place) {
    QLayout::setGeometry(place);
    QRect free = place.marginsRemoved(contentsMargins());
    for (const Line &line : linesFor(free.width())) {
        placeLine(line, QRect(free.left(), free.top(), free.width(), line.height));
        free.setTop(free.top() + line.height + gap());
    }
}

void FlowLayout::placeLine(const Line &line, const QRect &place) const {
    // What a line leaves free goes to its last widget that can use it.
    const auto grows =
        std::ranges::find_if(line.items.rbegin(), line.items.rend(), [](const QLayoutItem *item) {
            return item->expandingDirections() & Qt::Horizontal;
        });
    int left = place.left();
    for (QLayoutItem *item : line.items) {
        QSize size = item->sizeHint();
        if (grows != line.items.rend() && item == *grows)
            size.rwidth() += place.width() - line.width;
        size = size.boundedTo(item->maximumSize());
        size.setWidth(std::min(size.width(), place.width()));
        const QRect box(left, place.top() + (line.height - size.height()) / 2, size.width(),
                        size.height());
        item->setGeometry(QStyle::visualRect(parentWidget()->layoutDirection(), place, box));
        left += size.width() + gap();
    }
}

} // namespace nv
