#include "ui/views/CardPane.h"

#include "platform/qt/QtText.h"
#include "ui/views/HitMarks.h"
#include "ui/views/PropertiesPane.h"
#include "ui/views/ShownSigns.h"
#include "views/CellText.h"

#include <QBoxLayout>
#include <QEvent>
#include <QSplitter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>

namespace nv {

namespace {

constexpr std::size_t kMostTitle = 200;    ///< characters
constexpr std::size_t kMostAddress = 2000; ///< characters; the list has all of it
constexpr int kLabelLetters = 24;          ///< room for the labels

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
    m_text->setMinimumHeight(2 * fontMetrics().height());
    m_text->installEventFilter(this);
    auto *halves = new QSplitter(Qt::Vertical);
    halves->setObjectName(QStringLiteral("cardSplitter"));
    halves->addWidget(m_text);
    halves->addWidget(&properties);
    halves->setStretchFactor(0, 3);
    halves->setStretchFactor(1, 2);
    halves->setSizes({180, 200});
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(halves);
}

void CardPane::showRecord(UrlId id) {
    m_card = m_load(id);
    write();
    m_properties.showRecord(id);
}

void CardPane::clear() {
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
    mark();
}

void CardPane::setHits(std::shared_ptr<HitFinder> finder) {
    m_finder = std::move(finder);
    mark();
}

void CardPane::mark() {
    m_text->setExtraSelections(hitSelections(*m_text->document(), m_finder.get()));
}

/// The labels' colour is that of the text's palette, which changes after the pane's own.
bool CardPane::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_text && event->type() == QEvent::PaletteChange && m_card)
        write();
    return QWidget::eventFilter(watched, event);
}

} // namespace nv
