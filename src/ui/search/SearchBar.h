#pragma once

#include "search/Search.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;

namespace nv {

class SearchNames;

/// The box of the search, what is wrong with it or came of it, and a menu of what was found, by
/// kind and by host.
class SearchBar final : public QWidget {
    Q_OBJECT

  public:
    explicit SearchBar(QWidget *parent = nullptr);

    QString text() const;
    /// Without telling of it.
    void setText(const QString &text);
    /// The same as if it had been typed.
    void putText(const QString &text, int cursor);
    int cursor() const;
    void focusBox();
    bool hasBoxFocus() const;
    /// Adds a condition to the box, and tells of it as if it had been entered.
    void addCondition(const QString &condition);

    enum class Tone { plain, fault };
    /// Stands beside the box; an empty text takes it away.
    void showMessage(const QString &text, Tone tone = Tone::plain);
    /// What can be typed, until something is or the keys go elsewhere.
    void showHint();
    void showCounts(const FoundCounts &counts);
    void clearCounts() { showCounts({}); }
    /// Below the box; none take the list away.
    void offerNames(const NamedCounts &names);
    /// An entry of the menu, below the counts.
    QMenu &menu() { return *m_menu; }

  signals:
    void typed(const QString &text);
    /// A letter has come or gone: names may be offered.
    void edited();
    /// One of those that were offered.
    void nameChosen(const QString &name);
    void entered(const QString &text);
    /// The examiner goes from the box to the rows.
    void left();
    /// Before the menu comes up.
    void menuWanted();

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

  private:
    void showTone();
    void addCounts(const QString &title, ClauseKind kind, const NamedCounts &counts);
    void chooseFrom(const QString &title, ClauseKind kind, const NamedCounts &counts);

    QLineEdit *m_text = nullptr;
    QLabel *m_message = nullptr;
    QToolButton *m_hits = nullptr;
    QMenu *m_menu = nullptr;
    SearchNames *m_names = nullptr;
    Tone m_tone = Tone::plain; ///< of the message
    bool m_isHint = false;     ///< the message is one
    bool m_isSet = false;      ///< the text changes, but nobody typed it
};

} // namespace nv
