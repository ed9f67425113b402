#include "ui/frame/SearchProgress.h"

#include "platform/qt/QtText.h"
#include "ui/frame/ElidedLabel.h"

#include <QBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace nv {

SearchProgress::SearchProgress(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("SearchProgress"));
    m_label = new ElidedLabel(tr("Making the search index"));
    m_label->setObjectName(QStringLiteral("labSearchIndex"));
    constexpr int kWidth = 120; // pixels
    constexpr int kWhole = 100;
    m_bar = new QProgressBar;
    m_bar->setObjectName(QStringLiteral("barSearchIndex"));
    m_bar->setAccessibleName(m_label->text());
    m_bar->setRange(0, kWhole);
    m_bar->setMaximumWidth(kWidth);
    auto *cancel = new QToolButton;
    cancel->setObjectName(QStringLiteral("btnStopIndex"));
    cancel->setText(tr("Cancel"));
    cancel->setAccessibleName(tr("Stop making the search index"));
    cancel->setToolTip(tr("What is done of it holds; the next search goes on from there"));
    cancel->setFocusPolicy(Qt::TabFocus);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(6, 0, 6, 0);
    row->addWidget(m_label);
    row->addWidget(m_bar);
    row->addWidget(cancel);
    connect(cancel, &QToolButton::clicked, this, &SearchProgress::cancelled);
    hide();
}

void SearchProgress::showFraction(double fraction) {
    constexpr double kMilliseconds = 1000;
    if (isHidden()) {
        m_clock.start();
        m_left.start(0);
    }
    m_left.advance(fraction, static_cast<double>(m_clock.elapsed()) / kMilliseconds);
    const QString left = toQt(m_left.text());
    m_label->setText(left.isEmpty() ? tr("Making the search index")
                                    : tr("Making the search index, %1").arg(left));
    m_label->setToolTip(Qt::convertFromPlainText(m_label->text()));
    m_bar->setValue(static_cast<int>(fraction * m_bar->maximum()));
    show();
}

} // namespace nv
