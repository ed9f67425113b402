#pragma once

#include "ui/parts/Workbench.h"

class QMainWindow;

namespace nv {

class ChipBar;

/// The chips above the table: all that limits its rows, how many rows are left, and undo.
class LimitsPart final : public QObject {
    Q_OBJECT

  public:
    /// After the parts that limit rows.
    explicit LimitsPart(Workbench &bench);

  private:
    void addActions(QMainWindow &window);
    void goToChips();
    void load(bool asksAgain);
    void countRecords();
    void showChips();
    void showCount();

    Workbench &m_bench;
    ChipBar *m_bar = nullptr;
    QAction *m_goTo = nullptr;
    QAction *m_liftAll = nullptr;
    std::vector<Limits::Chip> m_chips; ///< as they are shown
    qint64 m_records = 0;              ///< of the project
    qint64 m_countedTo = 0;            ///< the last record when they were counted
};

} // namespace nv
