#pragma once

#include "base/TaskMonitor.h"
#include "base/TimeLeft.h"

#include <atomic>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace nv::cli {

/// Set by Ctrl-C; every loop of a task asks for it.
extern std::atomic<bool> interrupted;
/// Set when nobody reads the standard output any more, as after "| head"; it interrupts as well.
extern std::atomic<bool> outputClosed;

/// Makes Ctrl-C set `interrupted`; a second one ends the process at once. A closed pipe sets it
/// too, so that the project is closed in order and no scratch files stay.
void catchInterrupts();

/// The headless program's task monitor: a progress bar on a terminal's stderr, silence elsewhere.
class TerminalTask final : public TaskMonitor {
  public:
    /// `seconds` counts up steadily.
    TerminalTask(std::ostream &err, bool isTerminal,
                 std::function<double()> seconds = steadySeconds)
        : m_err(err), m_isTerminal(isTerminal), m_seconds(std::move(seconds)) {}
    ~TerminalTask() override { clear(); }
    TerminalTask(const TerminalTask &) = delete;
    TerminalTask &operator=(const TerminalTask &) = delete;

    void describe(const TaskHeading &heading) override;
    bool advance(double fraction) override;
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
    /// Takes the bar away, so that other lines can be written; what comes next is measured anew.
    void clear();

  private:
    static double steadySeconds();
    void draw(double fraction);

    std::ostream &m_err;
    bool m_isTerminal;
    bool m_drawn = false;
    std::string m_title;
    std::function<double()> m_seconds;
    std::optional<double> m_lastDrawn;  ///< nothing before the first bar and after a new title
    std::optional<TimeLeft> m_timeLeft; ///< of the task that has begun
};

} // namespace nv::cli
