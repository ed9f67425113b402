#pragma once

#include "base/TaskMonitor.h"

#include <string>
#include <utility>

namespace nv {

/// Shows one line of the wizard's status.
inline void showStatus(TaskMonitor &task, std::string text) {
    TaskStep step;
    step.topMessage = std::move(text);
    task.show(step);
}

} // namespace nv
