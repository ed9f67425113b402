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

} // namespace nv
