#include "time/Daylight.h"

#include <chrono>
#include <cstdint>

namespace nv {

namespace {

namespace c = std::chrono;

constexpr std::int64_t kUnixEpochDay = 25569;
constexpr double kFailure = -1;

Date dateOf(c::sys_days day) {
    return Date::fromDays(static_cast<double>(day.time_since_epoch().count() + kUnixEpochDay));
}

c::sys_days dayOf(Date date) {
    return c::floor<c::days>(c::sys_seconds{c::seconds(date.unixSeconds())});
}

c::year_month monthOf(Date date) {
    const c::year_month_day day{dayOf(date)};
    return day.year() / day.month();
}

bool usable(int weekday, Date date) {
    return weekday >= 1 && weekday <= 7 && date.days() > 0;
}

c::weekday chronoWeekday(int weekday) {
    return c::weekday(static_cast<unsigned>(weekday - 1));
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

Date firstWeekdayOfMonth(int weekday, Date dayOfMonth) {
    return nthWeekdayOfMonth(weekday, 1, dayOfMonth);
}

Date lastWeekdayOfMonth(int weekday, Date dayOfMonth) {
    if (!usable(weekday, dayOfMonth))
        return Date::fromDays(kFailure);
    return dateOf(monthOf(dayOfMonth) / chronoWeekday(weekday)[c::last]);
}

Date nthWeekdayOfMonth(int weekday, int count, Date dayOfMonth) {
    if (!usable(weekday, dayOfMonth) || count < 1 || count > 5)
        return Date::fromDays(kFailure);
    const auto day = monthOf(dayOfMonth) / chronoWeekday(weekday)[static_cast<unsigned>(count)];
    return day.ok() ? dateOf(day) : Date::fromDays(kFailure);
}

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
