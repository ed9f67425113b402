#include "app/ui/ProgressBox.h"

#include <QPainter>

#include <algorithm>

namespace nv {

ProgressBox::ProgressBox(QWidget *parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ProgressBox::setPercent(int percent) {
    m_percent = std::clamp(percent, 0, 100);
    update();
}

QSize ProgressBox::sizeHint() const {
    return {240, fontMetrics().height() + 6};
}

void ProgressBox::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const QRect inside = rect().adjusted(0, 0, -1, -1);
    painter.fillRect(rect(), palette().base());
    painter.fillRect(QRect(0, 0, width() * m_percent / 100, height()),
                     palette().color(QPalette::Highlight));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(inside);
}

} // namespace nv
