#pragma once

#include "base/FailureLog.h"

namespace nv {

/// For attempts whose failure tells nobody anything.
struct NoLog final : FailureLog {
    void write(const Failure &) override {}
};

} // namespace nv
