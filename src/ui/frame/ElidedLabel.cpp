#include "ui/frame/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace nv {

ElidedLabel::ElidedLabel(const QString &text, QWidget *parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
    constexpr int kLeast = 8; // average characters
    const QMargins around = contentsMargins();
    const int least = kLeast * fontMetrics().averageCharWidth() + around.left() + around.right();
    const QSize whole = sizeHint();
    return {std::min(least, whole.width()), whole.height()};
}

void ElidedLabel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    const QRect room = contentsRect();
    const bool isWhole = width() >= sizeHint().width(); // both are rounded
    style()->drawItemText(&painter, room, static_cast<int>(alignment()), palette(), isEnabled(),
                          isWhole ? text()
                                  : fontMetrics().elidedText(text(), Qt::ElideRight, room.width()),
                          foregroundRole());
}

} // namespace nv
