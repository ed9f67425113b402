#pragma once

#include "base/Clock.h"
#include "time/Date.h"

#include <concepts>
#include <cstdint>
#include <string_view>
#include <utility>

namespace nv {

// What the browsers wrote, to a Date. No zone is applied unless a Clock is handed in. Fractions of
// seconds are dropped towards the past; a stamp outside of the years 100 to 9999 is no date.

/// Seconds since 1970. Only the first 10 characters of the number's text count, sign included: a
/// stamp in milliseconds or microseconds (of 2001-09-09 or later) so reads as seconds. Never fails:
/// what is no number, or no date, gives 1970-01-01.
Date unixSecondsToDate(std::int64_t seconds);
Date unixSecondsToDate(std::string_view text);

/// Seconds since 1970, taken as they are.
Date secondsToDate1970(double seconds);
/// Seconds since 2001-01-01, the clock of property lists.
Date secondsToDate2001(double seconds);

/// Microseconds since 1601.
Date chromeTimeToDate(std::int64_t microseconds);
/// Any other integer: an unsigned value that 63 bits can't hold is no date, not one before 1601.
template <std::integral Number>
Date chromeTimeToDate(Number microseconds) {
    return std::in_range<std::int64_t>(microseconds)
               ? chromeTimeToDate(static_cast<std::int64_t>(microseconds))
               : Date();
}

/// Ticks of 100 nanoseconds since 1601 in UTC, read as they stand. 0 is no date.
Date fileTimeToUtc(std::uint64_t ticks);
/// The same in the machine's zone, with the offset that is in force now.
Date fileTimeToLocalDate(std::uint64_t ticks, const Clock &clock);

/// Both use the offset that the machine has in force now, whatever the date, and keep whole
/// seconds, so that each undoes the other on any machine.
Date localDateToUTC(Date local, const Clock &clock);
Date utcDateToLocal(Date utc, const Clock &clock);

/// The two words of a FAT directory entry: years since 1980 in 7 bits, month in 4, day in 5; hours
/// in 5, minutes in 6, pairs of seconds in 5. An impossible day or time is no date.
Date dosDateToUtc(std::uint16_t date, std::uint16_t time);

} // namespace nv
