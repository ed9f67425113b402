#pragma once

#include "base/Trap.h"

namespace nv {

/// The procedure trap where the result is whether `body` came through; `body` returns nothing.
template <class Body>
[[nodiscard]] bool succeeds(FailureLog &log, Severity severity, std::string_view procedure,
                            std::string_view recommendation, Body &&body) {
    static_assert(std::is_void_v<std::invoke_result_t<Body>>, "a result would be lost here");
    return trapped(log, severity, procedure, recommendation, false, [&body] {
        std::forward<Body>(body)();
        return true;
    });
}

} // namespace nv
