#pragma once

#include "base/TaskMonitor.h"

#include <cstdint>

namespace nv {

/// Asks a task now and then, in loops whose turns take less than a question would: often enough
/// that they end within some milliseconds. Who gets false ends, and what it has is a part.
class StillWanted {
  public:
    static constexpr std::uint32_t kTurns = 1024; ///< between two questions

    /// `task` must outlive this.
    explicit StillWanted(TaskMonitor &task) : m_task(task) {}

    [[nodiscard]] bool goesOn() {
        if (!m_isOver && ++m_turns % kTurns == 0)
            m_isOver = !m_task.advance(0);
        return !m_isOver;
    }
    bool isOver() const { return m_isOver; }

  private:
    TaskMonitor &m_task;
    std::uint32_t m_turns = 0;
    bool m_isOver = false;
};

} // namespace nv
