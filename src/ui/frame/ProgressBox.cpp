#include "ui/frame/ProgressBox.h"

#include <QPainter>

#include <algorithm>

namespace nv {

ProgressBox::ProgressBox(QWidget *parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMinimumHeight(fontMetrics().height() + 6);
}

void ProgressBox::setPercent(int percent) {
    m_percent = std::clamp(percent, 0, 100);
    update();
}

void ProgressBox::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const QRect inside = rect().adjusted(0, 0, -1, -1);
    painter.fillRect(rect(), palette().base());
    // Pale enough for the counter, which is drawn on it in the colour of text.
    QColor done = palette().color(QPalette::Highlight);
    done.setAlpha(110);
    painter.fillRect(QRect(0, 0, width() * m_percent / 100, height()), done);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(inside);
}

} // namespace nv
