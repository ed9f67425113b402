#include "ui/viewers/TextPane.h"

#include "platform/qt/QtText.h"
#include "ui/widgets/ShownLines.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace nv {

namespace {

QPlainTextEdit *newText() {
    auto *text = new QPlainTextEdit;
    text->setObjectName(QStringLiteral("txtContent"));
    text->setAccessibleName(TextPane::tr("Cached content as text"));
    text->setReadOnly(true);
    // With a cursor, so that text is chosen by keys too.
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setFrameShape(QFrame::NoFrame);
    return text;
}

} // namespace

TextPane::TextPane(QWidget *parent)
    : ViewerFrame("TextPane", *newText(), parent),
      m_text(findChild<QPlainTextEdit *>(QStringLiteral("txtContent"))) {
    m_find = new QLineEdit;
    m_find->setObjectName(QStringLiteral("txtFindInText"));
    m_find->setAccessibleName(tr("Find in this text"));
    m_find->setPlaceholderText(tr("Find in this text"));
    m_find->setClearButtonEnabled(true);
    auto *next = new QPushButton(tr("Find &Next"));
    next->setObjectName(QStringLiteral("btnFindInText"));
    m_matchCase = new QCheckBox(tr("Match &case"));
    m_matchCase->setObjectName(QStringLiteral("chkTextCase"));
    auto *wrap = new QCheckBox(tr("Wra&p lines"));
    wrap->setObjectName(QStringLiteral("chkWrap"));
    m_result = newLabel("labTextResult");
    m_charset = newLabel("labCharset");
    m_charset->setToolTip(tr("The encoding by which the bytes were read, and what named it"));
    bar().addWidget(m_find, 1);
    bar().addWidget(next);
    bar().addWidget(m_matchCase);
    bar().addWidget(wrap);
    bar().addWidget(m_result);
    bar().addWidget(m_charset);
    connect(m_find, &QLineEdit::returnPressed, this, &TextPane::findNext);
    connect(next, &QPushButton::clicked, this, &TextPane::findNext);
    connect(wrap, &QCheckBox::toggled, this, &TextPane::setWrapped);
    wrap->setChecked(true);
}

void TextPane::showText(const CachedText &text) {
    if (const QString lines = shownLines(text.text);
        !showsContent() || lines != m_text->toPlainText()) // what is read stays where it is
        m_text->setPlainText(lines);
    m_charset->setText(tr("%1 (%2)").arg(toQt(displayText(text.charset)), toQt(text.foundIn)));
    m_result->clear();
    showContent();
    showNotice(toQt(cutNotice(text)));
}

void TextPane::clear() {
    m_text->clear();
    m_charset->clear();
    m_result->clear();
    showReason({});
}

void TextPane::openFind() {
    m_find->setFocus(Qt::ShortcutFocusReason);
    m_find->selectAll();
}

/// Goes on from the top when there is no further one.
void TextPane::findNext() {
    if (m_find->text().isEmpty())
        return openFind();
    const QTextDocument::FindFlags flags =
        m_matchCase->isChecked() ? QTextDocument::FindCaseSensitively : QTextDocument::FindFlags();
    m_result->clear();
    if (m_text->find(m_find->text(), flags))
        return;
    const QTextCursor before = m_text->textCursor();
    m_text->moveCursor(QTextCursor::Start);
    if (m_text->find(m_find->text(), flags)) {
        m_result->setText(tr("From the top."));
    } else {
        m_text->setTextCursor(before);
        m_result->setText(tr("Not found."));
    }
}

void TextPane::setWrapped(bool wrapped) {
    m_text->setLineWrapMode(wrapped ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
}

} // namespace nv
