#pragma once

#include <QStringList>
#include <QWidget>

class QLabel;
class QToolButton;

namespace nv {

class FlowLayout;

/// A line of chips, each with a cross that takes it away, how many rows they leave, and a button
/// that takes all of them away. Arrows lead from chip to chip, Delete and the space key take one
/// away, Escape leaves.
class ChipBar final : public QWidget {
    Q_OBJECT

  public:
    explicit ChipBar(QWidget *parent = nullptr);

    void setChips(const QStringList &texts);
    void setCount(const QString &text, const QString &tip);
    /// Leads the keys to the first chip; false without any.
    bool focusChips();

  signals:
    /// By the place of its text.
    void lifted(int chip);
    void allLifted();
    /// The examiner goes from the chips to the rows, or has taken the last one away.
    void left();

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    QToolButton *newChip(const QString &text, int place);
    /// Of what has the keys, among the chips and the button after them; -1 when none has.
    int placeOfFocus() const;
    void goTo(int place);
    bool takesKey(int key);

    FlowLayout *m_flow = nullptr;
    QLabel *m_count = nullptr;
    QToolButton *m_clear = nullptr;
    QStringList m_texts;
    QList<QToolButton *> m_chips;
};

} // namespace nv
