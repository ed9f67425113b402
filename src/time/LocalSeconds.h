#pragma once

#include "time/StoredDays.h"
#include "time/TimeZone.h"

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace nv {

/// What the clock on the wall showed, for many dates: a zone is asked twice for each hour that has
/// any, and for each date only in hours in which the clocks changed. A clock that is set back shows
/// an hour twice.
class LocalSeconds {
  public:
    /// `zone` must outlive this.
    LocalSeconds(const TimeZone &zone, bool enableDSTChanges)
        : m_zone(zone), m_enableDSTChanges(enableDSTChanges) {}

    /// Seconds since 1970-01-01 00:00 by the zone's clock. Nothing without a date, and for one that
    /// the zone moves out of the calendar. Throws std::range_error as convertDateToZone() does.
    std::optional<std::int64_t> of(Date utc);
    /// The same of a date as it is stored.
    std::optional<std::int64_t> ofDays(double days) {
        // Dates that follow each other are often of one hour: then this is all there is to do.
        const double seconds = (days - Date::kUnixEpoch) * kSecondsPerDay + earlyBy(days) -
                               static_cast<double>(m_lastHour);
        if (m_lastOffset && days >= Date::kUnixEpoch && seconds >= 0 && seconds < kHour)
            return m_lastHour + static_cast<std::int64_t>(seconds) + *m_lastOffset;
        return of(Date::fromDays(days));
    }

  private:
    static constexpr std::int64_t kHour = 3600;

    std::optional<std::int64_t> offsetAt(std::int64_t utcSeconds) const;

    const TimeZone &m_zone;
    bool m_enableDSTChanges;
    /// Of hours since 1970; none for those in which it changes.
    std::unordered_map<std::int64_t, std::optional<std::int64_t>> m_offsets;
    std::int64_t m_lastHour = 0;              ///< its first second
    std::optional<std::int64_t> m_lastOffset; ///< of that hour
};

/// The first moment at which the zone's clock shows this second or a later one, in seconds since
/// 1970-01-01 00:00 of that clock. No date where the calendar ends. Throws as LocalSeconds::of().
Date firstMoment(std::int64_t second, const TimeZone &zone, bool enableDSTChanges);

} // namespace nv
