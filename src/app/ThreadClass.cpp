#include "app/ThreadClass.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Events run and the bar moves this often, in seconds; the texts change at the slower step that
/// the examiner chose.
constexpr double kPumpStep = 0.05;

int percentOf(std::int64_t counter, std::int64_t total) {
    if (total <= 0)
        return 0;
    return static_cast<int>(
        std::clamp(100.0 * static_cast<double>(counter) / static_cast<double>(total), 0.0, 100.0));
}

} // namespace

double ThreadClass::steadySeconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

ThreadClass::ThreadClass(StatusView &view, std::function<double()> seconds)
    : m_view(view), m_seconds(std::move(seconds)) {}

void ThreadClass::OpenThread() {
    IsOpen = true;
    CancelTask = false;
    m_stepDue = true;
    StartTimer = m_localTimer = m_lastPump = m_seconds();
    ResetThread();
    m_view.open();
    UpdateStatus();
}

void ThreadClass::CloseThread() {
    IsOpen = false;
    StartTimer = 0;
    QueueIndex = QueueItemCount = 0;
    IconPath.clear();
    m_view.close();
}

void ThreadClass::ResetThread() {
    TopVisible = BottomVisible = false;
    TopPercent = BottomPercent = 0;
    TopCounter = BottomCounter = 0;
    TopTotal = BottomTotal = 0;
    TopMessage.clear();
    BottomMessage.clear();
}

void ThreadClass::UpdateStatus() {
    m_view.update(*this);
    m_view.pump();
}

std::string ThreadClass::GetTimeElapsed() const {
    if (!IsOpen)
        return "00:00:00";
    const auto seconds = static_cast<std::int64_t>(std::max(0.0, m_seconds() - StartTimer));
    return fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string ThreadClass::windowTitle() const {
    if (TopVisible)
        return fmt::format("{}% Norvelane Thread Status", TopPercent);
    if (QueueItemCount > 1)
        return fmt::format("Thread Status - Queued: {}",
                           std::max<std::int64_t>(0, QueueItemCount - QueueIndex));
    return "Thread Status";
}

void ThreadClass::describe(const TaskHeading &heading) {
    Msg1 = heading.title;
    Msg2 = heading.subject;
    Msg3 = heading.detail;
    IconPath = heading.icon;
    TopVisible = true;
    BottomVisible = false;
    m_stepDue = true;
    UpdateStatus();
}

bool ThreadClass::advance(double fraction) {
    const double now = m_seconds();
    if (now - m_localTimer >= ProgressBarRefreshRate)
        m_stepDue = true;
    if (now - m_lastPump >= kPumpStep) {
        // Before the window is let run: what it does may ask for progress again.
        m_lastPump = now;
        TopPercent = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100);
        UpdateStatus();
    }
    return !CancelTask;
}

bool ThreadClass::wantsStep() const {
    return m_stepDue;
}

void ThreadClass::show(const TaskStep &step) {
    m_stepDue = false;
    m_localTimer = m_seconds();
    TopMessage = step.topMessage;
    TopCounter = step.topCounter;
    TopTotal = step.topTotal;
    BottomVisible = !step.bottomMessage.empty();
    BottomMessage = step.bottomMessage;
    BottomCounter = step.bottomCounter;
    BottomTotal = step.bottomTotal;
    BottomPercent = percentOf(BottomCounter, BottomTotal);
    UpdateStatus();
}

// A task within a task shows itself in the window that is open, and leaves it open.
OpenTask::OpenTask(ThreadClass &thread, const TaskHeading &heading)
    : m_thread(thread), m_owner(!thread.IsOpen) {
    if (m_owner)
        m_thread.OpenThread();
    m_thread.describe(heading);
}

OpenTask::~OpenTask() {
    if (m_owner)
        m_thread.CloseThread();
}

} // namespace nv
