#pragma once

#include "base/TaskMonitor.h"

#include <chrono>
#include <functional>
#include <string>

namespace nv {

class ThreadClass;

/// The window behind ThreadClass; the headless program has a progress bar instead.
class StatusView {
  public:
    virtual ~StatusView() = default;
    virtual void open() = 0;
    virtual void close() = 0;
    virtual void update(const ThreadClass &status) = 0;
    /// Lets pending window events run; this is how a click on Cancel comes through.
    virtual void pump() = 0;
};

/// What one progress bar of the status window shows.
struct StatusBar {
    bool visible = false;
    std::string message;
    std::int64_t counter = 0;
    std::int64_t total = 0;
    int percent = 0;
};

/// The status object of the current task. It is no thread: the name is the program's vocabulary.
/// Tasks see it as their TaskMonitor.
class ThreadClass final : public TaskMonitor {
  public:
    /// `seconds` counts up steadily; it is asked for the clock and the time step.
    explicit ThreadClass(StatusView &view, std::function<double()> seconds = steadySeconds);

    bool ShowTimeElapsed = true;
    bool ShowIcon = true;
    bool IsOpen = false;
    bool CancelTask = false; ///< set by the Cancel button, cleared when the next task starts
    std::int64_t QueueIndex = 0;
    std::int64_t QueueItemCount = 0;
    std::string IconPath;
    std::string Msg1;
    std::string Msg2;
    std::string Msg3;
    bool TopVisible = false; ///< the upper bar
    std::string TopMessage;
    std::int64_t TopCounter = 0;
    std::int64_t TopTotal = 0;
    int TopPercent = 0;
    bool BottomVisible = false; ///< the lower bar
    std::string BottomMessage;
    std::int64_t BottomCounter = 0;
    std::int64_t BottomTotal = 0;
    int BottomPercent = 0;
    double StartTimer = 0;             ///< when the task's clock began, in seconds of its own count
    double ProgressBarRefreshRate = 5; ///< seconds between two changes of the texts

    /// Shows the status window and starts the clock; a task inside a larger one, which finds it
    /// open, leaves it alone.
    void OpenThread();
    void CloseThread();
    /// Both bars at rest.
    void ResetThread();
    void UpdateStatus();
    /// "hh:mm:ss" since StartTimer.
    std::string GetTimeElapsed() const;
    StatusBar topBar() const { return {TopVisible, TopMessage, TopCounter, TopTotal, TopPercent}; }
    StatusBar bottomBar() const {
        return {BottomVisible, BottomMessage, BottomCounter, BottomTotal, BottomPercent};
    }
    /// The title of the status window.
    std::string windowTitle() const;

    void describe(const TaskHeading &heading) override;
    bool advance(double fraction) override;
    bool wantsStep() const override;
    void show(const TaskStep &step) override;

  private:
    static double steadySeconds();

    StatusView &m_view;
    std::function<double()> m_seconds;
    double m_localTimer = 0; ///< of the last change of the texts
    double m_lastPump = 0;
    bool m_stepDue = true;
};

/// Opens the status window for a task and closes it at the end, unless a larger task owns it.
class OpenTask {
  public:
    OpenTask(ThreadClass &thread, const TaskHeading &heading);
    ~OpenTask();
    OpenTask(const OpenTask &) = delete;
    OpenTask &operator=(const OpenTask &) = delete;

  private:
    ThreadClass &m_thread;
    bool m_owner;
};

} // namespace nv
