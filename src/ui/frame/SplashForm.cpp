#include "ui/frame/SplashForm.h"

#include "platform/qt/Icons.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

namespace nv {

namespace {

constexpr QSize kSize(600, 362); // 9000 by 5430 twips
constexpr QRgb kTop = 0xff24496f;
constexpr QRgb kBottom = 0xff12243a;

} // namespace

SplashForm::SplashForm(const QString &version)
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint), m_version(version) {
    setObjectName(QStringLiteral("SplashForm"));
    setFixedSize(kSize);
}

void SplashForm::showCentred() {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    move(screen.center() - rect().center());
    show();
    repaint();
    QCoreApplication::processEvents();
}

void SplashForm::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    QLinearGradient ground(0, 0, 0, height());
    ground.setColorAt(0, QColor::fromRgb(kTop));
    ground.setColorAt(1, QColor::fromRgb(kBottom));
    painter.fillRect(rect(), ground);
    icon("norvelane-logo").paint(&painter, QRect(48, 96, 128, 128));

    painter.setPen(Qt::white);
    QFont title = font();
    title.setPixelSize(44);
    title.setBold(true);
    painter.setFont(title);
    painter.drawText(QPoint(208, 158), QStringLiteral("Norvelane"));

    QFont small = font();
    small.setPixelSize(16);
    painter.setFont(small);
    painter.setPen(QColor(255, 255, 255, 215));
    painter.drawText(QRect(210, 172, width() - 234, 48), Qt::TextWordWrap,
                     tr("Examination of web-browser caches and histories"));
    if (!m_version.isEmpty())
        painter.drawText(QPoint(210, 240), tr("Version %1").arg(m_version));
}

} // namespace nv
