#include "ui/frame/WorkProgress.h"

#include "platform/qt/QtText.h"
#include "ui/frame/ElidedLabel.h"

#include <QBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace nv {

WorkProgress::WorkProgress(const Texts &texts, QWidget *parent)
    : QWidget(parent), m_what(texts.what) {
    const QString name = QLatin1String(texts.name);
    setObjectName(name);
    m_label = new ElidedLabel(m_what);
    m_label->setObjectName(QStringLiteral("lab") + name);
    constexpr int kWidth = 120; // pixels
    constexpr int kWhole = 100;
    m_bar = new QProgressBar;
    m_bar->setObjectName(QStringLiteral("bar") + name);
    m_bar->setAccessibleName(m_what);
    m_bar->setRange(0, kWhole);
    m_bar->setMaximumWidth(kWidth);
    auto *cancel = new QToolButton;
    cancel->setObjectName(QStringLiteral("btnStop") + name);
    cancel->setText(texts.stop);
    cancel->setAccessibleName(texts.stopLong);
    cancel->setToolTip(texts.stopHint);
    cancel->setFocusPolicy(Qt::TabFocus);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(6, 0, 6, 0);
    row->addWidget(m_label);
    row->addWidget(m_bar);
    row->addWidget(cancel);
    connect(cancel, &QToolButton::clicked, this, &WorkProgress::cancelled);
    hide();
}

void WorkProgress::showFraction(double fraction) {
    constexpr double kMilliseconds = 1000;
    if (isHidden()) {
        m_clock.start();
        m_left.start(0);
    }
    m_left.advance(fraction, static_cast<double>(m_clock.elapsed()) / kMilliseconds);
    const QString left = toQt(m_left.text());
    m_label->setText(left.isEmpty() ? m_what : QStringLiteral("%1, %2").arg(m_what, left));
    m_label->setToolTip(Qt::convertFromPlainText(m_label->text()));
    m_bar->setValue(static_cast<int>(fraction * m_bar->maximum()));
    show();
}

WorkProgress *newIndexProgress() {
    return new WorkProgress(
        {"SearchProgress", WorkProgress::tr("Making the search index"), WorkProgress::tr("Cancel"),
         WorkProgress::tr("Stop making the search index"),
         WorkProgress::tr("What is done of it holds; the next search goes on from there")});
}

} // namespace nv
