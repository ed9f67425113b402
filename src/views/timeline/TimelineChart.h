#pragma once

#include "platform/TimeChart.h"
#include "views/timeline/Timeline.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace nv {

/// The bars as they are drawn: the parts with most events first, days without any marked, and at
/// most so many labels at round dates. Title and lines are left to the caller.
TimeChart chartOf(const TimedEvents &events, const TimeBars &bars, std::size_t mostLabels);

/// The place of a part's colour: a kind of records or a browser has the same one in each picture,
/// whatever else is shown.
std::uint32_t colorPlaceOf(std::string_view part);

/// "one bar is a day", "one bar is 3 days".
std::string barText(const TimeBars &bars);
/// "year", "month" ...
std::string_view wordOf(TimeUnit unit);

} // namespace nv
