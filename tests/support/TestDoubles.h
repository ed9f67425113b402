#pragma once

#include "base/Clock.h"
#include "base/Examiner.h"
#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "readers/Reader.h"

#include <deque>
#include <string>
#include <vector>

namespace nv::test {

/// Keeps every log entry; tests assert them, and assert that there are none.
struct MemoryLog final : FailureLog {
    void write(const Failure &failure) override { entries.push_back(failure); }
    std::vector<Failure> entries;
};

/// Keeps every record and numbers it from 1, as the database would.
struct MemorySink final : RecordSink {
    void save(UrlRecord &record) override {
        record.URLID = UrlId{static_cast<std::int64_t>(records.size()) + 1};
        records.push_back(record);
    }
    std::vector<UrlRecord> records;
};

/// Cancels at the call of advance() that follows `calls` others.
class CancelAfter final : public TaskMonitor {
  public:
    explicit CancelAfter(int calls) : m_left(calls) {}
    void describe(const TaskHeading &heading) override { headings.push_back(heading); }
    bool advance(double) override { return m_left-- > 0; }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
    std::vector<TaskHeading> headings;

  private:
    int m_left;
};

/// Keeps what a task shows of itself, and wants every step.
struct MemoryTask final : TaskMonitor {
    void describe(const TaskHeading &heading) override { headings.push_back(heading); }
    bool advance(double fraction) override {
        fractions.push_back(fraction);
        return true;
    }
    bool wantsStep() const override { return true; }
    void show(const TaskStep &step) override { steps.push_back(step); }
    std::vector<TaskHeading> headings;
    std::vector<double> fractions;
    std::vector<TaskStep> steps;
};

/// A clock that stands still, by default at 2011-06-15 12:00 UTC on a machine in UTC.
struct FixedClock final : Clock {
    TimePoint now() const override { return point; }
    std::chrono::minutes localOffset() const override { return offset; }
    TimePoint point{std::chrono::seconds(1308139200)};
    std::chrono::minutes offset{0};
};

/// Answers from a script; a question that the script doesn't expect fails the test, and so does an
/// answer that was never used.
class ScriptedExaminer final : public Examiner {
  public:
    ScriptedExaminer() = default;
    ~ScriptedExaminer() override;
    ScriptedExaminer(const ScriptedExaminer &) = delete;
    ScriptedExaminer &operator=(const ScriptedExaminer &) = delete;
    void expect(std::string id, Answer answer = Answer::Ok) {
        m_script.emplace_back(std::move(id), answer);
    }
    Answer ask(const Message &message) override;
    std::vector<Message> heard;

  private:
    std::deque<std::pair<std::string, Answer>> m_script;
};

} // namespace nv::test
