#pragma once

#include "base/TaskMonitor.h"

#include <QElapsedTimer>
#include <QObject>

namespace nv {

/// The wizard's own monitor, for the scan: its texts are shown in the wizard and not in the status
/// window.
class WizardTask final : public QObject, public TaskMonitor {
    Q_OBJECT

  public:
    WizardTask();
    void cancel() { m_cancelled = true; }

    void describe(const TaskHeading &heading) override;
    bool advance(double fraction) override;
    bool wantsStep() const override;
    void show(const TaskStep &step) override;

  signals:
    /// `fraction` is 0 to 1.
    void advanced(double fraction);
    void stepped(const QString &what, const QString &where);

  private:
    bool m_cancelled = false;
    QElapsedTimer m_sincePump;
    QElapsedTimer m_sinceStep;
};

} // namespace nv
