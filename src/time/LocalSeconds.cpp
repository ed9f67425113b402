#include "time/LocalSeconds.h"

namespace nv {

std::optional<std::int64_t> LocalSeconds::of(Date utc) {
    if (!utc.has())
        return std::nullopt;
    const std::int64_t seconds = utc.unixSeconds();
    if (m_lastOffset && seconds >= m_lastHour && seconds - m_lastHour < kHour)
        return seconds + *m_lastOffset;
    const std::int64_t hour = seconds / kHour - (seconds % kHour < 0 ? 1 : 0);
    const auto [found, isNew] = m_offsets.try_emplace(hour);
    if (isNew) {
        const auto first = offsetAt(hour * kHour);
        found->second = first == offsetAt(hour * kHour + kHour - 1) ? first : std::nullopt;
    }
    m_lastHour = hour * kHour;
    m_lastOffset = found->second;
    const auto offset = m_lastOffset ? m_lastOffset : offsetAt(seconds);
    return offset ? std::optional(seconds + *offset) : std::nullopt;
}

std::optional<std::int64_t> LocalSeconds::offsetAt(std::int64_t utcSeconds) const {
    const Date local =
        convertDateToZone(Date::fromUnixSeconds(utcSeconds), m_zone, m_enableDSTChanges);
    return local.has() ? std::optional(local.unixSeconds() - utcSeconds) : std::nullopt;
}

Date firstMoment(std::int64_t second, const TimeZone &zone, bool enableDSTChanges) {
    constexpr std::int64_t kFarthest = 26 * 3600; // no clock is farther from UTC
    LocalSeconds clock(zone, enableDSTChanges);
    const auto isReached = [&](std::int64_t utc) {
        const auto local = clock.of(Date::fromUnixSeconds(utc));
        return local && *local >= second;
    };
    // A clock that is set back makes the answer no and yes again: the first yes is near the time
    // by the offset before that, so hours are looked at one by one before the second is.
    constexpr std::int64_t kStep = 900;
    std::int64_t utc = second - kFarthest;
    while (utc < second + kFarthest && !isReached(utc))
        utc += kStep;
    std::int64_t before = utc - kStep;
    while (utc - before > 1) {
        const std::int64_t middle = before + (utc - before) / 2;
        (isReached(middle) ? utc : before) = middle;
    }
    return Date::fromUnixSeconds(utc);
}

} // namespace nv
