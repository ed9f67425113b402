#include "ui/views/ChipBar.h"

#include "platform/qt/Icons.h"
#include "ui/views/FlowLayout.h"

#include <QBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace nv {

namespace {

constexpr int kWidest = 150; ///< pixels of a chip's text

} // namespace

ChipBar::ChipBar(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("chipBar"));
    auto *chips = new QWidget;
    chips->setObjectName(QStringLiteral("chips"));
    m_flow = new FlowLayout(chips);
    m_flow->setContentsMargins(0, 0, 0, 0);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    chips->setSizePolicy(policy);
    m_count = new QLabel;
    m_count->setObjectName(QStringLiteral("labLimitCount"));
    m_count->setTextFormat(Qt::PlainText);
    m_clear = new QToolButton;
    m_clear->setObjectName(QStringLiteral("btnClearLimits"));
    m_clear->setText(tr("Clear all"));
    m_clear->setToolTip(tr("Show all rows: takes every limit away"));
    m_clear->setFocusPolicy(Qt::TabFocus);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(chips, 1);
    row->addWidget(m_count);
    row->addWidget(m_clear);
    connect(m_clear, &QToolButton::clicked, this, &ChipBar::allLifted);
    setChips({});
}

QToolButton *ChipBar::newChip(const QString &text, int place) {
    auto *chip = new QToolButton;
    chip->setObjectName(QStringLiteral("btnChip%1").arg(place));
    QString shown = chip->fontMetrics().elidedText(text, Qt::ElideMiddle, kWidest);
    chip->setText(shown.replace(u'&', QStringLiteral("&&")));
    chip->setIcon(icon("close"));
    chip->setIconSize({12, 12});
    chip->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    chip->setFocusPolicy(Qt::TabFocus);
    chip->setAccessibleName(tr("Limit: %1").arg(text));
    chip->setAccessibleDescription(tr("Press to show the rows that it hides"));
    chip->setToolTip(Qt::convertFromPlainText(tr("%1\nClick to take this limit away").arg(text)));
    // After the click is over: it takes the button away.
    connect(
        chip, &QToolButton::clicked, this, [this, place] { emit lifted(place); },
        Qt::QueuedConnection);
    return chip;
}

/// Buttons that stay the same stay, and keep the focus.
void ChipBar::setChips(const QStringList &texts) {
    if (texts != m_texts) {
        const bool hadFocus = m_flow->parentWidget()->isAncestorOf(focusWidget());
        for (QToolButton *chip : std::as_const(m_chips)) {
            m_flow->removeWidget(chip);
            chip->hide();
            chip->setObjectName({}); // its place may be another's at once
            chip->deleteLater();
        }
        m_chips.clear();
        for (const QString &text : texts) {
            m_chips += newChip(text, static_cast<int>(m_chips.size()));
            m_flow->addWidget(m_chips.back());
            m_chips.back()->show(); // the layout would do so later
        }
        m_texts = texts;
        if (hadFocus && !m_chips.empty())
            m_chips.front()->setFocus();
    }
    m_clear->setVisible(!texts.isEmpty());
    m_count->setVisible(!texts.isEmpty());
}

void ChipBar::setCount(const QString &text, const QString &tip) {
    m_count->setText(text);
    m_count->setToolTip(Qt::convertFromPlainText(tip));
}

} // namespace nv
