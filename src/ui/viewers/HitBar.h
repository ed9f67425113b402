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
    /// How many hits the viewer has, and which one it is at. While it still looks for others, a
    /// button ends that.
    void showCount(const QString &text, bool isWorking);

  signals:
    void nextWanted();
    void previousWanted();
    void stopWanted();

  private:
    static QToolButton *newButton(const char *name, Qt::ArrowType arrow, const QString &text);

    QLabel *m_text = nullptr;
    QLabel *m_count = nullptr;
    QToolButton *m_stop = nullptr;
};

} // namespace nv
