#include "app/program/TaskStatus.h"

#include "base/Text.h"

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

/// Titles are in capitals, which shout where other words stand beside them.
std::string inSentenceCase(const std::string &title) {
    if (title.empty())
        return {};
    return title.substr(0, 1) + replaceAll(toLower(title.substr(1)), "urls", "URLs");
}

} // namespace

double TaskStatus::steadySeconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

TaskStatus::TaskStatus(StatusView &view, std::function<double()> seconds)
    : m_view(view), m_seconds(std::move(seconds)) {}

void TaskStatus::openThread() {
    isOpen = true;
    cancelTask = false;
    m_stepDue = true;
    startTimer = m_localTimer = m_lastPump = m_seconds();
    m_timeLeft.start(startTimer);
    m_firstTitle.clear();
    resetThread();
    m_view.open();
    updateStatus();
}

void TaskStatus::closeThread() {
    isOpen = false;
    startTimer = 0;
    queueIndex = queueItemCount = 0;
    iconPath.clear();
    work.clear();
    m_timeLeft = TimeLeft();
    m_view.close();
    if (watcher)
        watcher(*this);
}

void TaskStatus::resetThread() {
    topVisible = bottomVisible = false;
    topPercent = bottomPercent = 0;
    topCounter = bottomCounter = 0;
    topTotal = bottomTotal = 0;
    topMessage.clear();
    bottomMessage.clear();
}

void TaskStatus::updateStatus() {
    m_view.update(*this);
    if (watcher)
        watcher(*this);
    m_view.pump();
}

double TaskStatus::secondsElapsed() const {
    return isOpen ? std::max(0.0, m_seconds() - startTimer) : 0;
}

std::string TaskStatus::workName() const {
    return work.empty() ? inSentenceCase(m_firstTitle) : work;
}

std::string TaskStatus::getTimeElapsed() const {
    const auto seconds = static_cast<std::int64_t>(secondsElapsed());
    return fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string TaskStatus::windowTitle() const {
    if (topVisible)
        return fmt::format("{}% Norvelane Thread Status", topPercent);
    if (queueItemCount > 1)
        return fmt::format("Thread Status - Queued: {}",
                           std::max<std::int64_t>(0, queueItemCount - queueIndex));
    return "Thread Status";
}

void TaskStatus::describe(const TaskHeading &heading) {
    if (m_firstTitle.empty())
        m_firstTitle = heading.title;
    msg1 = heading.title;
    msg2 = heading.subject;
    msg3 = heading.detail;
    iconPath = heading.icon;
    topVisible = true;
    bottomVisible = false;
    m_stepDue = true;
    updateStatus();
}

bool TaskStatus::advance(double fraction) {
    const double now = m_seconds();
    if (now - m_localTimer >= progressBarRefreshRate)
        m_stepDue = true;
    if (now - m_lastPump >= kPumpStep) {
        // Before the window is let run: what it does may ask for progress again.
        m_lastPump = now;
        topPercent = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100);
        m_timeLeft.advance(fraction, now);
        updateStatus();
    }
    return !cancelTask;
}

bool TaskStatus::wantsStep() const {
    return m_stepDue;
}

void TaskStatus::show(const TaskStep &step) {
    m_stepDue = false;
    m_localTimer = m_seconds();
    topMessage = step.topMessage;
    topCounter = step.topCounter;
    topTotal = step.topTotal;
    bottomVisible = !step.bottomMessage.empty();
    bottomMessage = step.bottomMessage;
    bottomCounter = step.bottomCounter;
    bottomTotal = step.bottomTotal;
    bottomPercent = percentOf(bottomCounter, bottomTotal);
    updateStatus();
}

// A task within a task shows itself in the window that is open, and leaves it open.
OpenTask::OpenTask(TaskStatus &thread, const TaskHeading &heading, const std::string &work)
    : m_thread(thread), m_owner(!thread.isOpen) {
    if (m_owner) {
        m_thread.work = work;
        m_thread.openThread();
    }
    m_thread.describe(heading);
}

OpenTask::~OpenTask() {
    if (m_owner)
        m_thread.closeThread();
}

} // namespace nv
