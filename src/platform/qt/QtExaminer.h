#pragma once

#include "base/Examiner.h"

namespace nv {

/// Puts messages to whoever sits before the window that is active at the moment.
class QtExaminer final : public Examiner {
  public:
    Answer ask(const Message &message) override;
};

} // namespace nv
