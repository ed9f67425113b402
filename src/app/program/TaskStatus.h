#pragma once

#include "base/TaskMonitor.h"
#include "base/TimeLeft.h"

#include <chrono>
#include <functional>
#include <string>

namespace nv {

class TaskStatus;

/// The window behind TaskStatus; the headless program has a progress bar instead.
class StatusView {
  public:
    virtual ~StatusView() = default;
    virtual void open() = 0;
    virtual void close() = 0;
    virtual void update(const TaskStatus &status) = 0;
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
class TaskStatus final : public TaskMonitor {
  public:
    /// `seconds` counts up steadily; it is asked for the clock and the time step.
    explicit TaskStatus(StatusView &view, std::function<double()> seconds = steadySeconds);

    bool showTimeElapsed = true;
    bool showIcon = true;
    bool isOpen = false;
    bool cancelTask = false; ///< set by the Cancel button, cleared when the next task starts
    std::int64_t queueIndex = 0;
    std::int64_t queueItemCount = 0;
    std::string work; ///< the whole task in words, such as "Import"; its parts have titles
    std::string iconPath;
    std::string msg1;
    std::string msg2;
    std::string msg3;
    bool topVisible = false; ///< the upper bar
    std::string topMessage;
    std::int64_t topCounter = 0;
    std::int64_t topTotal = 0;
    int topPercent = 0;
    bool bottomVisible = false; ///< the lower bar
    std::string bottomMessage;
    std::int64_t bottomCounter = 0;
    std::int64_t bottomTotal = 0;
    int bottomPercent = 0;
    double startTimer = 0;             ///< when the task's clock began, in seconds of its own count
    double progressBarRefreshRate = 5; ///< seconds between two changes of the texts
    /// Hears of each step and of the end, besides the view.
    std::function<void(const TaskStatus &)> watcher;

    /// Shows the status window and starts the clock; a task inside a larger one, which finds it
    /// open, leaves it alone.
    void openThread();
    void closeThread();
    /// Both bars at rest.
    void resetThread();
    void updateStatus();
    /// "hh:mm:ss" since startTimer.
    std::string getTimeElapsed() const;
    /// Since startTimer; 0 when no task runs.
    double secondsElapsed() const;
    /// "about 3 minutes left"; empty while nobody can know.
    std::string getTimeLeft() const { return m_timeLeft.text(); }
    /// What the task is called where there is little room: "Import", "Rebuilding web pages".
    std::string workName() const;
    StatusBar topBar() const { return {topVisible, topMessage, topCounter, topTotal, topPercent}; }
    StatusBar bottomBar() const {
        return {bottomVisible, bottomMessage, bottomCounter, bottomTotal, bottomPercent};
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
    TimeLeft m_timeLeft;
    std::string m_firstTitle; ///< of the task that was opened
    double m_localTimer = 0;  ///< of the last change of the texts
    double m_lastPump = 0;
    bool m_stepDue = true;
};

/// Opens the status window for a task and closes it at the end, unless a larger task owns it.
class OpenTask {
  public:
    /// `work` is the whole task in words; empty when the heading's title says it.
    OpenTask(TaskStatus &thread, const TaskHeading &heading, const std::string &work = {});
    ~OpenTask();
    OpenTask(const OpenTask &) = delete;
    OpenTask &operator=(const OpenTask &) = delete;

  private:
    TaskStatus &m_thread;
    bool m_owner;
};

} // namespace nv
