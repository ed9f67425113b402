#pragma once

#include "base/Examiner.h"
#include "base/FailureLog.h"

#include <QApplication>

namespace nv {

/// The application with a net below every event: a failure that no command has caught, such as a
/// full disk at the tick of a row, is logged and told, and the program goes on. Without the net it
/// would end on the spot. Failures of start-up pass through to main().
class GuardedApplication final : public QApplication {
    Q_OBJECT

  public:
    using QApplication::QApplication;

    /// From now on failures go to these two, until stopReporting().
    void report(FailureLog &log, Examiner &examiner);
    void stopReporting();
    bool notify(QObject *receiver, QEvent *event) override;

  private:
    void tell(const char *reason);

    FailureLog *m_log = nullptr;
    Examiner *m_examiner = nullptr;
};

} // namespace nv
