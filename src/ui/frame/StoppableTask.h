#pragma once

#include "base/TaskMonitor.h"

#include <atomic>
#include <functional>
#include <utility>

namespace nv {

/// A task in a thread of its own, which ends once its owner says so. It shows nothing but how much
/// of it is done.
class StoppableTask final : public TaskMonitor {
  public:
    /// `stops` must outlive this. `shown` hears of each hundredth, in the task's thread.
    explicit StoppableTask(const std::atomic<bool> &stops, std::function<void(int)> shown = {})
        : m_stops(stops), m_shown(std::move(shown)) {}
    void describe(const TaskHeading &) override {}
    bool advance(double fraction) override {
        constexpr double kHundred = 100;
        const int done = static_cast<int>(fraction * kHundred);
        if (m_shown && done != std::exchange(m_done, done))
            m_shown(done);
        return !m_stops;
    }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}

  private:
    const std::atomic<bool> &m_stops;
    std::function<void(int)> m_shown;
    int m_done = 0;
};

} // namespace nv
