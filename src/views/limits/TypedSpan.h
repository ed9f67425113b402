#pragma once

#include "views/timeline/TimeLimit.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

// Dates of a span as they are typed, by the clock of a zone, as seconds since 1970-01-01 00:00 of
// that clock: "2011-03-01", "2011-03-01 19:30".

/// What stands for an end that nobody has named; no date is before or after.
inline constexpr TimeSpan kAllTime{-62'000'000'000, 250'000'000'000};

/// Nothing for a text that is no date.
std::optional<std::int64_t> secondTyped(std::string_view text);
/// The end of what is named: a day, hour or minute belongs to the span.
std::optional<std::int64_t> endTyped(std::string_view text);

/// As one would type it; empty for that of kAllTime.
std::string beginText(const TimeSpan &span);
std::string endText(const TimeSpan &span);

/// What limits a column of dates.
struct DateRange {
    TimeSpan span;    ///< by the zone's clock; an end may be that of kAllTime
    std::string zone; ///< its name
    TimeLimit within; ///< the same in UTC

    friend bool operator==(const DateRange &, const DateRange &) = default;
};
/// Throws as limitOf() does.
DateRange dateRange(const TimeSpan &span, const TimeZone &zone, bool enableDSTChanges);

} // namespace nv
