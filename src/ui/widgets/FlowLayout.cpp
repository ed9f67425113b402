#include "ui/widgets/FlowLayout.h"

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

int FlowLayout::leastWidth(const QLayoutItem &item) const {
    return m_shrinks ? item.minimumSize().width() : item.sizeHint().width();
}

std::vector<FlowLayout::Line> FlowLayout::linesFor(int width) const {
    std::vector<Line> lines;
    int least = 0; // of the line in hand
    for (QLayoutItem *item : m_items) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint();
        if (lines.empty() || least + gap() + leastWidth(*item) > width) {
            lines.emplace_back();
            least = 0;
        }
        Line &line = lines.back();
        least += (line.items.empty() ? 0 : gap()) + leastWidth(*item);
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

/// Wide ones give way first, so that short texts stay whole: none is wider than the widest cap with
/// which all of them fit.
std::vector<int> FlowLayout::widthsIn(const Line &line, int room) const {
    const auto widthAt = [this](const QLayoutItem &item, int cap) {
        const int wanted = item.sizeHint().width();
        return std::clamp(cap, std::min(leastWidth(item), wanted), wanted);
    };
    int cap = line.width;
    int fits = 0;
    for (int above = cap; m_shrinks && line.width > room && above - fits > 1;) {
        cap = fits + (above - fits) / 2;
        int all = gap() * (static_cast<int>(line.items.size()) - 1);
        for (const QLayoutItem *item : line.items)
            all += widthAt(*item, cap);
        (all > room ? above : fits) = cap;
        cap = fits;
    }
    std::vector<int> widths;
    widths.reserve(line.items.size());
    for (const QLayoutItem *item : line.items)
        widths.push_back(widthAt(*item, cap));
    return widths;
}

void FlowLayout::placeLine(const Line &line, const QRect &place) const {
    // What a line leaves free goes to its last widget that can use it.
    const auto grows =
        std::ranges::find_if(line.items.rbegin(), line.items.rend(), [](const QLayoutItem *item) {
            return item->expandingDirections() & Qt::Horizontal;
        });
    const std::vector<int> widths = widthsIn(line, place.width());
    int left = place.left();
    for (std::size_t at = 0; at < line.items.size(); ++at) {
        QLayoutItem *item = line.items[at];
        QSize size(widths[at], item->sizeHint().height());
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
