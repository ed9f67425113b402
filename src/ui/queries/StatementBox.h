#pragma once

#include <QPlainTextEdit>

namespace nv {

class SqlHighlighter;

/// A box for a statement: a fixed-width font and colours that follow the theme. Its Undo also takes
/// back what the program has put into it.
class StatementBox final : public QPlainTextEdit {
    Q_OBJECT

  public:
    explicit StatementBox(const char *name, QWidget *parent = nullptr);
    void setStatement(const QString &sql);

  protected:
    void changeEvent(QEvent *event) override;

  private:
    SqlHighlighter *m_highlighter;
};

} // namespace nv
