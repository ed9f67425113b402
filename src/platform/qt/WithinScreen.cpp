#include "platform/qt/WithinScreen.h"

#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace nv {

void resizeWithinScreen(QWidget &window, QSize wanted) {
    constexpr int kBorders = 8; // pixels left and right; how wide they are is known once it stands
    const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
    const QSize room = window.screen()->availableSize() - QSize(kBorders, title + kBorders);
    window.resize(wanted.boundedTo(room));
}

} // namespace nv
