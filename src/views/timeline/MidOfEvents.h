#pragma once

#include "views/timeline/Timeline.h"

#include <cstdint>

namespace nv {

/// As many of the span's events come before it as after it; its middle where it has none.
std::int64_t midOf(const TimedEvents &events, const TimeSpan &span);

} // namespace nv
