#pragma once

#include <QStringList>
#include <QWidget>

class QLabel;
class QToolButton;

namespace nv {

class FlowLayout;

/// A line of chips, each with a cross that takes it away, how many rows they leave, and a button
/// that takes all of them away.
class ChipBar final : public QWidget {
    Q_OBJECT

  public:
    explicit ChipBar(QWidget *parent = nullptr);

    void setChips(const QStringList &texts);
    void setCount(const QString &text, const QString &tip);

  signals:
    /// By the place of its text.
    void lifted(int chip);
    void allLifted();

  private:
    QToolButton *newChip(const QString &text, int place);

    FlowLayout *m_flow = nullptr;
    QLabel *m_count = nullptr;
    QToolButton *m_clear = nullptr;
    QStringList m_texts;
    QList<QToolButton *> m_chips;
};

} // namespace nv
