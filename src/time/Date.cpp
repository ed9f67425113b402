#include "time/Date.h"

#include "time/StoredDays.h"

#include <algorithm>
#include <cmath>

namespace nv {

namespace {

constexpr double kFirstDay = -657434; // 0100-01-01
constexpr double kEndDay = 2958466;   // 10000-01-01

} // namespace

Date Date::fromDays(double days) {
    Date date;
    const bool isBeforeEnd = days + earlyBy(days) / kSecondsPerDay < kEndDay; // by its second too
    if (days >= kFirstDay && isBeforeEnd)
        date.m_days = days;
    return date;
}

Date Date::fromCivil(const CivilTime &civil) {
    namespace c = std::chrono;
    const c::year_month_day day{c::year(civil.year), c::month(static_cast<unsigned>(civil.month)),
                                c::day(static_cast<unsigned>(civil.day))};
    const bool clock = civil.hour >= 0 && civil.hour < 24 && civil.minute >= 0 &&
                       civil.minute < 60 && civil.second >= 0 && civil.second < 60;
    if (!day.ok() || !clock)
        return {};
    const std::int64_t seconds = civil.hour * 3600 + civil.minute * 60 + civil.second;
    return fromUnixSeconds(c::sys_days(day).time_since_epoch().count() * std::int64_t{86400} +
                           seconds);
}

Date Date::fromUnixSeconds(std::int64_t seconds) {
    return fromDays(kUnixEpoch + static_cast<double>(seconds) / kSecondsPerDay);
}

/// The last 50 microseconds of a second, and some more in far years, are one moment: none is taken
/// for the second that follows.
Date Date::fromUnixMicroseconds(std::int64_t microseconds) {
    namespace c = std::chrono;
    constexpr double kLast = 50e-6;
    constexpr double kClear = 3; // times what may be early (time/StoredDays.h)
    const auto second = c::floor<c::seconds>(c::microseconds(microseconds));
    const double days = kUnixEpoch + static_cast<double>(second.count()) / kSecondsPerDay;
    const double part = c::duration<double>(c::microseconds(microseconds) - second).count();
    const double end = 1 - std::max(kLast, kClear * earlyBy(days));
    return fromDays(kUnixEpoch +
                    (static_cast<double>(second.count()) + std::min(part, end)) / kSecondsPerDay);
}

Date Date::fromTimePoint(std::chrono::system_clock::time_point point) {
    return fromUnixSeconds(
        std::chrono::floor<std::chrono::seconds>(point.time_since_epoch()).count());
}

std::int64_t Date::unixSeconds() const {
    return static_cast<std::int64_t>(
        std::floor((m_days - kUnixEpoch) * kSecondsPerDay + earlyBy(m_days)));
}

CivilTime Date::civil() const {
    namespace c = std::chrono;
    const c::sys_seconds instant{c::seconds(unixSeconds())};
    const c::sys_days midnightOfDay = c::floor<c::days>(instant);
    const c::year_month_day day{midnightOfDay};
    const c::hh_mm_ss clock{instant - midnightOfDay};
    return {int(day.year()),
            static_cast<int>(unsigned(day.month())),
            static_cast<int>(unsigned(day.day())),
            static_cast<int>(clock.hours().count()),
            static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
}

int Date::weekday() const {
    namespace c = std::chrono;
    const std::chrono::weekday weekday{
        c::floor<c::days>(c::sys_seconds{c::seconds(unixSeconds())})};
    return static_cast<int>(weekday.c_encoding()) + 1;
}

Date Date::plusMinutes(std::int64_t minutes) const {
    return plusSeconds(minutes * 60);
}

Date Date::plusSeconds(std::int64_t seconds) const {
    return has() ? fromDays(m_days + static_cast<double>(seconds) / kSecondsPerDay) : Date();
}

} // namespace nv
