#include "ui/frame/StatusSign.h"

#include <QLabel>
#include <QMainWindow>
#include <QStatusBar>

namespace nv {

QLabel *newStatusSign(QWidget &window, const char *name) {
    auto *sign = new QLabel;
    sign->setObjectName(QLatin1String(name));
    sign->setTextFormat(Qt::PlainText);
    sign->setContentsMargins(8, 1, 8, 1);
    sign->setAutoFillBackground(true);
    sign->setBackgroundRole(QPalette::Highlight);
    sign->setForegroundRole(QPalette::HighlightedText);
    if (auto *main = qobject_cast<QMainWindow *>(&window))
        main->statusBar()->addPermanentWidget(sign);
    sign->hide();
    return sign;
}

} // namespace nv
