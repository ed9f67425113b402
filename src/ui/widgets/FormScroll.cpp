#include "ui/widgets/FormScroll.h"

#include <QScrollBar>

#include <algorithm>

namespace nv {

FormScroll::FormScroll(QWidget &page, int width, QWidget *parent)
    : QScrollArea(parent), m_width(width) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setWidget(&page);
}

QSize FormScroll::sizeHint() const {
    const int width = std::max(m_width, minimumSizeHint().width());
    const int height = widget()->hasHeightForWidth() ? widget()->heightForWidth(width)
                                                     : widget()->sizeHint().height();
    return {width, std::max(height, widget()->minimumSizeHint().height())};
}

/// A few lines are always seen.
QSize FormScroll::minimumSizeHint() const {
    constexpr int kLines = 6;
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(),
            kLines * fontMetrics().lineSpacing()};
}

} // namespace nv
