#pragma once

#include "platform/TimeChart.h"

#include <string>

namespace nv {

// The timeline as a picture within a page: lines and boxes without a style of their own.

/// The bars with their axis; each tells its time and its count to who points at it.
std::string barsSvg(const TimeChart &chart);
/// What the colours of the bars mean.
std::string barsKey(const TimeChart &chart);
/// A column a bar, the hours of the day from 0 at the top: the darker, the more. Empty for a chart
/// without hours.
std::string hoursSvg(const TimeChart &chart);

} // namespace nv
