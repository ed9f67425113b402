#pragma once

#include "ui/parts/Workbench.h"

#include <QTimer>

class QMainWindow;

namespace nv {

/// Whether a window is so low that what can be done without folds.
bool isLow(const QWidget &window);

/// Shares the height of a low window: the table keeps six rows, or four in the lowest ones, and
/// what shows the record gives of its own for that as far as it can. Once the examiner has
/// moved the line between them it stays where it is.
class LowWindow final : public QObject {
    Q_OBJECT

  public:
    /// Made when all that stands in the window is there.
    LowWindow(Workbench &bench, QMainWindow &window);

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void share();

    Workbench &m_bench;
    QMainWindow &m_window;
    QTimer m_soon; ///< after the layout has taken what came or went
    bool m_isByHand = false;
};

} // namespace nv
