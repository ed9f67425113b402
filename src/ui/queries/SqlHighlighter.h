#pragma once

#include <QSyntaxHighlighter>

namespace nv {

/// Colours the words, texts, dates and numbers of a statement, on a light ground or a dark one.
class SqlHighlighter final : public QSyntaxHighlighter {
    Q_OBJECT

  public:
    using QSyntaxHighlighter::QSyntaxHighlighter;

  protected:
    void highlightBlock(const QString &text) override;
};

} // namespace nv
