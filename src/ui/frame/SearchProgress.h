#pragma once

#include "base/TimeLeft.h"

#include <QElapsedTimer>
#include <QWidget>

class QLabel;
class QProgressBar;

namespace nv {

/// How far the making of the search index is, in the status bar, and a button that stops it.
class SearchProgress final : public QWidget {
    Q_OBJECT

  public:
    explicit SearchProgress(QWidget *parent = nullptr);

    /// `fraction` is 0 to 1. Shows itself.
    void showFraction(double fraction);

  signals:
    void cancelled();

  private:
    QLabel *m_label = nullptr;
    QProgressBar *m_bar = nullptr;
    QElapsedTimer m_clock;
    TimeLeft m_left;
};

} // namespace nv
