#pragma once

#include <cstdint>
#include <string>

namespace nv {

/// What the status window says of a task: an upper-case title, the product, the file in hand, and
/// a file name of the images folder.
struct TaskHeading {
    std::string title;
    std::string subject;
    std::string detail;
    std::string icon;
};

/// The two progress bars' texts and counters; `total` 0 hides the bar's percentage.
struct TaskStep {
    std::string topMessage;
    std::int64_t topCounter = 0;
    std::int64_t topTotal = 0;
    std::string bottomMessage;
    std::int64_t bottomCounter = 0;
    std::int64_t bottomTotal = 0;
};

/// How a long task shows itself and learns that it was cancelled. Loops call advance() for every
/// record: it throttles itself.
class TaskMonitor {
  public:
    virtual ~TaskMonitor() = default;

    virtual void describe(const TaskHeading &heading) = 0;
    /// `fraction` of the task done, 0 to 1. False when the examiner cancelled: the task finishes
    /// the record in hand and returns; what is written stays.
    [[nodiscard]] virtual bool advance(double fraction) = 0;
    /// True when the time step has passed and show() would be seen: texts are made only then.
    virtual bool wantsStep() const = 0;
    virtual void show(const TaskStep &step) = 0;
};

/// A task without anybody watching, never cancelled.
class Unwatched final : public TaskMonitor {
  public:
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return true; }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
};

/// A part of a larger task: its 0 to 1 is `from` to `to` of the whole.
class SubTask final : public TaskMonitor {
  public:
    SubTask(TaskMonitor &whole, double from, double to) : m_whole(whole), m_from(from), m_to(to) {}

    void describe(const TaskHeading &heading) override { m_whole.describe(heading); }
    bool advance(double fraction) override {
        return m_whole.advance(m_from + (m_to - m_from) * fraction);
    }
    bool wantsStep() const override { return m_whole.wantsStep(); }
    void show(const TaskStep &step) override { m_whole.show(step); }

  private:
    TaskMonitor &m_whole;
    double m_from;
    double m_to;
};

} // namespace nv
