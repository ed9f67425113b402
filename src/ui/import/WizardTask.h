#pragma once

#include "base/TaskMonitor.h"
#include "base/TimeLeft.h"

#include <QElapsedTimer>
#include <QObject>

#include <cstdint>
#include <functional>

namespace nv {

/// The wizard's own monitor, for the scan: its texts are shown in the wizard and not in the status
/// window.
class WizardTask final : public QObject, public TaskMonitor {
    Q_OBJECT

  public:
    /// Of a clock that counts up steadily.
    using Seconds = std::function<double()>;

    explicit WizardTask(Seconds seconds = steadySeconds);
    void cancel() { m_cancelled = true; }

    void describe(const TaskHeading &heading) override;
    bool advance(double fraction) override;
    bool wantsStep() const override;
    void show(const TaskStep &step) override;

    /// "12,345 files seen, about 2 minutes left": the time so far while nobody can say how much is
    /// left.
    QString pace() const;

  signals:
    /// `fraction` is 0 to 1.
    void advanced(double fraction);
    void stepped(const QString &what, const QString &where);

  private:
    static double steadySeconds();
    void measure(double fraction);

    bool m_cancelled = false;
    TimeLeft m_timeLeft;
    bool m_isMeasured = false; ///< it is known how much there is to do
    std::int64_t m_seen = 0;   ///< files
    Seconds m_seconds;
    double m_begin;
    QElapsedTimer m_sincePump;
    QElapsedTimer m_sinceStep;
};

} // namespace nv
