#pragma once

#include "search/Search.h"

#include <QWidget>

class QLabel;
class QToolButton;

namespace nv {

/// A line below the rows: where the current row has what was looked for, and ways to the next and
/// the previous hit.
class HitBar final : public QWidget {
    Q_OBJECT

  public:
    explicit HitBar(QWidget *parent = nullptr);

    /// `field` is where the snippet stands.
    void showSnippet(const QString &field, const Snippet &snippet);
    /// In place of a snippet.
    void showNote(const QString &text);

  signals:
    void nextWanted();
    void previousWanted();

  private:
    QToolButton *newButton(const char *name, Qt::ArrowType arrow, const QString &text);

    QLabel *m_text = nullptr;
};

} // namespace nv
