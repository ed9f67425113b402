#pragma once

#include "base/TimeLeft.h"

#include <QElapsedTimer>
#include <QString>
#include <QWidget>

class QLabel;
class QProgressBar;

namespace nv {

/// How far work in the background is, in the status bar, and a button that stops it.
class WorkProgress final : public QWidget {
    Q_OBJECT

  public:
    struct Texts {
        const char *name; ///< of the object; its parts have it at their ends
        QString what;     ///< "Making the search index"
        QString stop;     ///< on the button
        QString stopLong; ///< "Stop making the search index"
        QString stopHint; ///< what holds of what is done
    };
    explicit WorkProgress(const Texts &texts, QWidget *parent = nullptr);

    /// `fraction` is 0 to 1. Shows itself.
    void showFraction(double fraction);

  signals:
    void cancelled();

  private:
    QString m_what;
    QLabel *m_label = nullptr;
    QProgressBar *m_bar = nullptr;
    QElapsedTimer m_clock;
    TimeLeft m_left;
};

/// That of the search index.
WorkProgress *newIndexProgress();

} // namespace nv
