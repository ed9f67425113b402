#pragma once

#include "time/Date.h"

#include <cstdint>

namespace nv {

// A date is kept as days, and a whole second may come back some microseconds early from these: its
// last bits are worth a microsecond today, and more the farther a year is from 1899. All that asks
// for the second of a date, or compares stored days with one, goes by these.

inline constexpr double kSecondsPerDay = 86400;

/// Seconds by which a whole second of that day may be early.
inline double earlyBy(double days) {
    constexpr double kOfSums = 5e-6; // zones and seconds that were added
    constexpr double kOfLastBits = 4e-11;
    return kOfSums + (days < 0 ? -days : days) * kOfLastBits;
}

/// The least stored days of a date in the same second; without a date meaningless.
double firstDays(Date date);

/// Milliseconds since 1970 that have passed; without a date meaningless.
std::int64_t unixMilliseconds(Date date);

} // namespace nv
