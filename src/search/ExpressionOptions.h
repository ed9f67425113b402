#pragma once

#include <cstdint>
#include <re2/re2.h>

namespace nv {

/// How all expressions are read; `mostBytes` of memory for each.
re2::RE2::Options expressionOptions(std::int64_t mostBytes);

} // namespace nv
