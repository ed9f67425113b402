#include "time/Daylight.h"

#include <chrono>

namespace nv {

namespace {

namespace c = std::chrono;

c::sys_days dayOf(Date date) {
    return c::floor<c::days>(c::sys_seconds{c::seconds(date.unixSeconds())});
}

/// Daylight time lasts from `first` up to, not including, `second` in a northern zone.
struct Boundaries {
    c::sys_days first;
    c::sys_days second;
};

Boundaries boundariesOf(c::year year) {
    if (year < c::year(2007))
        return {year / c::April / c::Sunday[1], year / c::October / c::Sunday[c::last]};
    return {year / c::March / c::Sunday[2], year / c::November / c::Sunday[1]};
}

} // namespace

bool isDSTInEffect(Date date, int latitudeBias) {
    const bool hasRule = latitudeBias == 1 || latitudeBias == -1;
    // A missing date compares false with everything.
    if (!hasRule || !(date.days() > 0))
        return false;
    const c::sys_days day = dayOf(date);
    const Boundaries boundaries = boundariesOf(c::year_month_day(day).year());
    const bool between = boundaries.first <= day && day < boundaries.second;
    return between == (latitudeBias == 1);
}

} // namespace nv
