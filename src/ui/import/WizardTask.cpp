#include "ui/import/WizardTask.h"

#include "platform/qt/QtText.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nv {

namespace {

constexpr qint64 kPumpStep = 50; // milliseconds, as below
constexpr qint64 kTextStep = 100;

} // namespace

WizardTask::WizardTask(Seconds seconds) : m_seconds(std::move(seconds)), m_begin(m_seconds()) {
    m_sincePump.start();
    m_sinceStep.start();
}

double WizardTask::steadySeconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

void WizardTask::describe(const TaskHeading &) {}

bool WizardTask::advance(double fraction) {
    if (m_sincePump.elapsed() >= kPumpStep) {
        m_sincePump.restart();
        measure(fraction);
        emit advanced(fraction);
        QCoreApplication::processEvents();
    }
    return !m_cancelled;
}

/// Folders are listed first, of which nobody knows how many there are: that isn't measured.
void WizardTask::measure(double fraction) {
    const double now = m_seconds();
    if (m_isMeasured)
        m_timeLeft.advance(fraction, now);
    else if (fraction > 0)
        m_timeLeft.start(now);
    m_isMeasured = m_isMeasured || fraction > 0;
}

QString WizardTask::pace() const {
    QStringList parts;
    if (m_seen > 0)
        parts += m_seen == 1 ? tr("1 file seen") : tr("%L1 files seen").arg(m_seen);
    if (const std::string left = m_timeLeft.text(); !left.empty()) {
        parts += toQt(left);
    } else {
        const auto seconds = static_cast<qint64>(m_seconds() - m_begin);
        constexpr int kMinute = 60;
        parts += tr("%1:%2 elapsed")
                     .arg(seconds / kMinute)
                     .arg(seconds % kMinute, 2, 10, QLatin1Char('0'));
    }
    return parts.join(QStringLiteral(", "));
}

bool WizardTask::wantsStep() const {
    return m_sinceStep.elapsed() >= kTextStep;
}

void WizardTask::show(const TaskStep &step) {
    m_sinceStep.restart();
    m_seen = std::max(m_seen, step.bottomCounter);
    emit stepped(toQt(step.topMessage), toQt(step.bottomMessage));
}

} // namespace nv
