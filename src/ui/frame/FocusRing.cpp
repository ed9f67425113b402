#include "ui/frame/FocusRing.h"

#include <QApplication>
#include <QEvent>
#include <QMenuBar>
#include <QPainter>
#include <QProxyStyle>

#include <utility>

namespace nv {

namespace {

constexpr int kMargin = 2;    ///< pixels between a widget's edge and that of its ring
constexpr int kRingWidth = 2; ///< pixels

/// The ring lies over the widgets, and isn't cut to what is outside of its own: a pane that fills
/// its window would have none.
class RingStyle final : public QProxyStyle {
  public:
    RingStyle() : QProxyStyle(QStringLiteral("Fusion")) {}
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override {
        if (hint == SH_FocusFrame_AboveWidget)
            return 1;
        return hint == SH_FocusFrame_Mask ? 0
                                          : QProxyStyle::styleHint(hint, option, widget, returned);
    }
    int pixelMetric(PixelMetric metric, const QStyleOption *option,
                    const QWidget *widget) const override {
        return metric == PM_FocusFrameHMargin || metric == PM_FocusFrameVMargin
                   ? kMargin
                   : QProxyStyle::pixelMetric(metric, option, widget);
    }
};

QStyle &ringStyle() {
    static QPointer<RingStyle> style;
    if (!style) {
        style = new RingStyle;
        style->setParent(qApp);
    }
    return *style;
}

/// Menus show by themselves what is chosen in them, and so do the lists of boxes.
bool marksItself(const QWidget &widget) {
    return widget.isWindow() || widget.window()->windowType() == Qt::Popup ||
           qobject_cast<const QMenuBar *>(&widget);
}

} // namespace

FocusRing::FocusRing(QWidget &around, int width) : QFocusFrame(around.window()), m_width(width) {
    setObjectName(QStringLiteral("focusRing"));
    setStyle(&ringStyle());
    setWidget(&around);
}

void FocusRing::paintEvent(QPaintEvent *) {
    const QRectF seen = rect() & QRect(-pos(), parentWidget()->size());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QGuiApplication::palette().color(QPalette::Link), m_width));
    const qreal half = m_width / 2.0;
    painter.drawRoundedRect(seen.adjusted(half, half, -half, -half), 2, 2);
}

FocusRings::FocusRings(QObject *parent) : QObject(parent) {
    connect(qApp, &QApplication::focusChanged, this, &FocusRings::look);
    qApp->installEventFilter(this);
}

void FocusRings::show() {
    static QPointer<FocusRings> rings;
    if (!rings)
        rings = new FocusRings(qApp);
}

bool FocusRings::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        setByKeys(true);
        break;
    case QEvent::MouseButtonPress:
        setByKeys(false);
        break;
    case QEvent::ApplicationPaletteChange: // after which the frame hides itself
        if (watched == qApp)
            QMetaObject::invokeMethod(this, &FocusRings::look, Qt::QueuedConnection);
        break;
    default:
        break;
    }
    return false;
}

void FocusRings::setByKeys(bool byKeys) {
    if (std::exchange(m_byKeys, byKeys) != byKeys)
        look();
}

void FocusRings::look() {
    delete m_ring;
    QWidget *focus = QApplication::focusWidget();
    if (m_byKeys && focus && !marksItself(*focus))
        m_ring = new FocusRing(*focus, kRingWidth);
}

} // namespace nv
