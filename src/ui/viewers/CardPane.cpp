#include "ui/viewers/CardPane.h"

#include "platform/qt/QtText.h"
#include "ui/viewers/HitMarks.h"
#include "ui/viewers/PropertiesPane.h"
#include "ui/widgets/ShownSigns.h"
#include "views/rows/CellText.h"

#include <QApplication>
#include <QBoxLayout>
#include <QEvent>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>

#include <algorithm>
#include <cmath>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kMostTitle = 200;    ///< characters
constexpr std::size_t kMostAddress = 2000; ///< characters; the list has all of it
constexpr int kLabelLetters = 24;          ///< room for the labels
constexpr int kLeastLines = 17;            ///< of words, list and text: of fewer none can be read
constexpr int kMostWordLines = 40;         ///< that are shown without a scroll bar of their own
constexpr int kListLines = 12;             ///< of list and text below them

/// Texts of evidence are inserted as they are: nothing in them is markup, and nothing a link.
class CardWriter {
  public:
    explicit CardWriter(QTextEdit &text)
        : m_text(text), m_cursor(text.document()),
          m_indent(kLabelLetters * text.fontMetrics().averageCharWidth()) {
        text.clear();
    }

    void title(const std::string &title) {
        QTextCharFormat format;
        format.setFontWeight(QFont::Bold);
        format.setFontPointSize(m_text.font().pointSizeF() * 1.2);
        m_cursor.insertText(shown(title, kMostTitle), format);
    }

    void address(const std::string &address) {
        block(0, 0);
        m_cursor.insertText(shown(address, kMostAddress), QTextCharFormat());
    }

    void line(const CardLine &line) {
        block(m_indent, -m_indent);
        QTextCharFormat label;
        QColor dim = m_text.palette().color(QPalette::Text);
        dim.setAlphaF(0.75F);
        label.setForeground(dim);
        m_cursor.insertText(shown(line.label, kMostTitle) + u'\t', label);
        m_cursor.insertText(shown(line.text, kMostAddress), QTextCharFormat());
    }

  private:
    static QString shown(const std::string &text, std::size_t most) {
        return shownSigns(toQt(displayText(text, most)));
    }

    void block(int left, int first) {
        QTextBlockFormat format;
        format.setLeftMargin(left);
        format.setTextIndent(first);
        format.setTopMargin(2);
        format.setTabPositions({QTextOption::Tab(m_indent, QTextOption::LeftTab)});
        m_cursor.insertBlock(format);
    }

    QTextEdit &m_text;
    QTextCursor m_cursor;
    int m_indent; ///< pixels
};

/// Title and address have no label.
bool isLine(const QTextBlock &block) {
    return block.blockFormat().leftMargin() > 0;
}

} // namespace

CardPane::CardPane(Load load, PropertiesPane &properties, QWidget *parent)
    : QWidget(parent), m_load(std::move(load)), m_properties(properties) {
    setObjectName(QStringLiteral("CardPane"));
    m_text = new QTextEdit;
    m_text->setObjectName(QStringLiteral("cardText"));
    m_text->setAccessibleName(tr("Card of the record"));
    m_text->setReadOnly(true);
    m_text->setAcceptRichText(false);
    m_text->setTabChangesFocus(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->setPlaceholderText(tr("Choose a row to see its card."));
    m_text->installEventFilter(this);
    m_answer = new QPlainTextEdit;
    m_answer->setObjectName(QStringLiteral("txtWhy"));
    m_answer->setAccessibleName(tr("Why the value is as it is"));
    m_answer->setReadOnly(true);
    m_answer->setTabChangesFocus(true);
    m_answer->setFrameShape(QFrame::NoFrame);
    m_words = new QStackedWidget;
    m_words->setMinimumHeight(2 * fontMetrics().height());
    m_words->addWidget(m_text);
    m_words->addWidget(m_answer);
    m_halves = new QSplitter(Qt::Vertical);
    m_halves->setObjectName(QStringLiteral("cardSplitter"));
    m_halves->setChildrenCollapsible(false);
    m_halves->addWidget(m_words);
    m_halves->addWidget(&properties);
    m_halves->setStretchFactor(0, 3);
    m_halves->setStretchFactor(1, 2);
    m_halves->setSizes({180, 200});
    m_halves->setMinimumHeight(kLeastLines * fontMetrics().lineSpacing());
    m_scroll = new QScrollArea;
    m_scroll->setObjectName(QStringLiteral("cardScroll"));
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setMinimumHeight(3 * fontMetrics().lineSpacing());
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setWidget(m_halves);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_scroll, 1);
    connect(&properties, &PropertiesPane::answered, this, &CardPane::showAnswer);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { follow(now); });
}

/// The line with the buttons doesn't scroll away.
void CardPane::arrange() {
    const bool isLow = height() < kLeastLines * fontMetrics().lineSpacing();
    QWidget &bar = m_properties.bar();
    if (isLow == (bar.parentWidget() == this))
        return fitWords();
    if (isLow)
        static_cast<QVBoxLayout *>(layout())->insertWidget(0, &bar);
    else
        m_properties.takeBar();
    bar.show();
    fitWords();
}

/// Where the card scrolls as one, its words don't scroll by themselves.
void CardPane::fitWords() {
    const bool isLow = m_properties.bar().parentWidget() == this;
    const int line = fontMetrics().lineSpacing();
    const int least = 2 * fontMetrics().height();
    const int whole = static_cast<int>(std::ceil(m_text->document()->size().height())) + 2;
    m_words->setMinimumHeight(isLow ? std::clamp(whole, least, kMostWordLines * line) : least);
    m_halves->setMinimumHeight(isLow ? m_words->minimumHeight() + kListLines * line
                                     : kLeastLines * line);
}

void CardPane::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    arrange();
}

/// Whoever goes there by the keys sees it.
void CardPane::follow(QWidget *focus) {
    if (focus && m_halves->isAncestorOf(focus))
        m_scroll->ensureWidgetVisible(focus, 0, 0);
}

/// The list below keeps its place, and with it the value that was asked about.
void CardPane::showAnswer(const QString &why) {
    m_answer->setPlainText(why);
    m_words->setCurrentWidget(why.isEmpty() ? static_cast<QWidget *>(m_text) : m_answer);
    if (!why.isEmpty())
        m_scroll->verticalScrollBar()->setValue(0); // of a low card, whose words are above
}

void CardPane::showRecord(UrlId id) {
    auto card = m_load(id);
    const bool isSame = std::exchange(m_id, id) == id && card == m_card;
    m_card = std::move(card);
    if (!isSame)
        write();
    m_properties.showRecord(id);
}

void CardPane::clear() {
    m_id = UrlId::none;
    m_card.reset();
    m_text->clear();
    m_properties.clear();
}

void CardPane::write() {
    if (!m_card)
        return m_text->clear();
    CardWriter writer(*m_text);
    writer.title(m_card->title);
    if (!m_card->address.empty())
        writer.address(m_card->address);
    for (const CardLine &line : m_card->lines)
        writer.line(line);
    m_text->moveCursor(QTextCursor::Start);
    fitWords();
    mark();
}

void CardPane::setHits(std::shared_ptr<HitFinder> finder) {
    m_finder = std::move(finder);
    mark();
}

/// What the record has, and not the words before it, which are the card's own.
void CardPane::mark() {
    QList<QTextEdit::ExtraSelection> marks;
    for (QTextBlock block = m_text->document()->begin(); block.isValid(); block = block.next()) {
        const QString text = block.text();
        const auto label = static_cast<int>(isLine(block) ? text.indexOf(u'\t') + 1 : 0);
        marks += hitSelections(*m_text->document(), m_finder.get(), block.position() + label,
                               static_cast<int>(text.size()) - label);
    }
    m_text->setExtraSelections(marks);
}

/// The labels' colour is that of the text's palette, which changes after the pane's own.
bool CardPane::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_text && event->type() == QEvent::PaletteChange && m_card)
        write();
    return QWidget::eventFilter(watched, event);
}

} // namespace nv
