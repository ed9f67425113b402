#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <limits>

namespace nv {

struct CivilTime {
    int year = 0;
    int month = 1; ///< 1 to 12
    int day = 1;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The one form of an instant: days since 1899-12-30 00:00 with the time of day as the fraction,
/// counted straight on below zero. 1970-01-01 is 25569. "No date" is a state of its own and not 0.
/// A Date names no zone; members and columns say which they mean.
class Date {
  public:
    static constexpr double kUnixEpoch = 25569;
    static constexpr double kFileTimeEpoch = -109205;

    constexpr Date() = default;
    /// No date when `days` lies outside of the years 100 to 9999.
    static Date fromDays(double days);
    /// No date when the calendar has no such day.
    static Date fromCivil(const CivilTime &civil);
    static Date fromUnixSeconds(std::int64_t seconds);
    /// With the fraction of its second, which only comparing and sorting see.
    static Date fromUnixMicroseconds(std::int64_t microseconds);
    static Date fromTimePoint(std::chrono::system_clock::time_point point);

    constexpr bool has() const { return m_days == m_days; }
    /// Meaningless without a date: ask has() first.
    constexpr double days() const { return m_days; }
    /// The second in which it lies.
    CivilTime civil() const;
    /// Seconds since 1970, of that second.
    std::int64_t unixSeconds() const;
    /// 1 Sunday to 7 Saturday.
    int weekday() const;

    Date plusMinutes(std::int64_t minutes) const;
    Date plusSeconds(std::int64_t seconds) const;

    friend constexpr bool operator==(const Date &a, const Date &b) {
        return a.m_days == b.m_days || (!a.has() && !b.has());
    }
    friend constexpr std::partial_ordering operator<=>(const Date &a, const Date &b) {
        return a.m_days <=> b.m_days;
    }

  private:
    double m_days = std::numeric_limits<double>::quiet_NaN();
};

} // namespace nv
