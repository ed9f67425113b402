#include "ui/limits/ChipBar.h"

#include "platform/qt/Icons.h"
#include "ui/widgets/FlowLayout.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>

#include <algorithm>

namespace nv {

namespace {

constexpr int kLeastText = 150; ///< pixels of a chip's text, before it takes another line

/// As wide as its text where there is room, and with the middle left out where there is none.
class Chip final : public QToolButton {
  public:
    explicit Chip(QString text) : m_text(std::move(text)) {
        setText(shown(m_text));
        setIcon(nv::icon("close"));
        setIconSize({12, 12});
        setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    }

    QSize minimumSizeHint() const override {
        QSize size = sizeHint();
        size.rwidth() -= std::max(0, textWidth() - kLeastText);
        return size;
    }

  protected:
    void paintEvent(QPaintEvent *) override {
        QStyleOptionToolButton option;
        initStyleOption(&option);
        if (const int lack = sizeHint().width() - width(); lack > 0)
            option.text =
                shown(fontMetrics().elidedText(m_text, Qt::ElideMiddle, textWidth() - lack));
        QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
    }

  private:
    static QString shown(QString text) { return text.replace(u'&', QStringLiteral("&&")); }
    int textWidth() const { return fontMetrics().horizontalAdvance(m_text); }

    QString m_text;
};

} // namespace

ChipBar::ChipBar(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("chipBar"));
    auto *chips = new QWidget;
    chips->setObjectName(QStringLiteral("chips"));
    m_flow = new FlowLayout(chips);
    m_flow->setShrinking(true);
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
    m_clear->installEventFilter(this);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(chips, 1);
    row->addWidget(m_count);
    row->addWidget(m_clear);
    connect(m_clear, &QToolButton::clicked, this, &ChipBar::allLifted);
    setChips({});
}

QToolButton *ChipBar::newChip(const QString &text, int place) {
    auto *chip = new Chip(text);
    chip->setObjectName(QStringLiteral("btnChip%1").arg(place));
    chip->setFocusPolicy(Qt::TabFocus);
    chip->installEventFilter(this);
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
    const int focus = placeOfFocus();
    if (texts != m_texts) {
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
        if (focus >= 0 && !m_chips.empty())
            goTo(std::min(focus, static_cast<int>(m_chips.size()) - 1));
    }
    setVisible(!texts.isEmpty()); // or it would take room from what the search has to say
    if (focus >= 0 && texts.isEmpty())
        emit left();
}

void ChipBar::setCount(const QString &text, const QString &tip) {
    m_count->setText(text);
    m_count->setToolTip(Qt::convertFromPlainText(tip));
}

bool ChipBar::focusChips() {
    if (m_chips.empty())
        return false;
    goTo(0);
    return true;
}

int ChipBar::placeOfFocus() const {
    const QWidget *focus = window()->focusWidget();
    if (focus == m_clear)
        return static_cast<int>(m_chips.size());
    const auto chip = std::ranges::find(m_chips, focus);
    return chip == m_chips.end() ? -1 : static_cast<int>(chip - m_chips.begin());
}

void ChipBar::goTo(int place) {
    QToolButton *button = place < m_chips.size() ? m_chips[place] : m_clear;
    button->setFocus(Qt::ShortcutFocusReason); // with the ring
}

/// Up and Down go along too: chips stand in several lines.
bool ChipBar::takesKey(int key) {
    const int place = placeOfFocus();
    const int last = static_cast<int>(m_chips.size()); // the button after them
    const int ahead = isRightToLeft() ? -1 : 1;
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        goTo(std::clamp(place - (key == Qt::Key_Left ? ahead : 1), 0, last));
        return true;
    case Qt::Key_Right:
    case Qt::Key_Down:
        goTo(std::clamp(place + (key == Qt::Key_Right ? ahead : 1), 0, last));
        return true;
    case Qt::Key_Home:
    case Qt::Key_End:
        goTo(key == Qt::Key_Home ? 0 : last);
        return true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        (place < last ? m_chips[place] : m_clear)->click();
        return true;
    case Qt::Key_Escape:
        emit left();
        return true;
    default:
        return false;
    }
}

bool ChipBar::eventFilter(QObject *watched, QEvent *event) {
    const bool isKey = event->type() == QEvent::KeyPress;
    const auto *press = isKey ? static_cast<QKeyEvent *>(event) : nullptr;
    const bool isBare = press && (press->modifiers() & ~Qt::KeypadModifier) == 0;
    return (isBare && placeOfFocus() >= 0 && takesKey(press->key())) ||
           QWidget::eventFilter(watched, event);
}

} // namespace nv
