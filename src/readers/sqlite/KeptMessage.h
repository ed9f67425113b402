#pragma once

#include "base/FailureLog.h"

#include <string>

namespace nv {

/// Keeps the message of a trapped failure for whoever decides what to make of it.
struct KeptMessage final : FailureLog {
    void write(const Failure &failure) override { text = failure.message; }
    std::string text;
};

} // namespace nv
