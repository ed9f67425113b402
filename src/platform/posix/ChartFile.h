#pragma once

#include "platform/TimeChart.h"

#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// A chart as the drawing program is told it.
std::string textOf(const TimeChart &chart);
/// Nothing when the text is no such chart, or one whose numbers don't fit each other.
std::optional<TimeChart> chartOf(std::string_view text);

} // namespace nv
