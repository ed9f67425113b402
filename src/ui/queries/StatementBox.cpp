#include "ui/queries/StatementBox.h"

#include "ui/queries/SqlHighlighter.h"

#include <QEvent>
#include <QFontDatabase>

namespace nv {

StatementBox::StatementBox(const char *name, QWidget *parent)
    : QPlainTextEdit(parent), m_highlighter(new SqlHighlighter(document())) {
    setObjectName(QLatin1String(name));
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabChangesFocus(true);
}

void StatementBox::setStatement(const QString &sql) {
    if (sql == toPlainText())
        return;
    QTextCursor whole(document());
    whole.select(QTextCursor::Document);
    whole.insertText(sql);
}

void StatementBox::changeEvent(QEvent *event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_highlighter)
        m_highlighter->rehighlight();
}

} // namespace nv
