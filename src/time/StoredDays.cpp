#include "time/StoredDays.h"

#include <algorithm>
#include <cmath>

namespace nv {

double firstDays(Date date) {
    const auto second = static_cast<double>(date.unixSeconds());
    return Date::kUnixEpoch + (second - earlyBy(date.days())) / kSecondsPerDay;
}

std::int64_t unixMilliseconds(Date date) {
    constexpr std::int64_t kASecond = 1000;
    const std::int64_t second = date.unixSeconds();
    const double part =
        (date.days() - Date::kUnixEpoch) * kSecondsPerDay - static_cast<double>(second);
    const auto passed =
        static_cast<std::int64_t>(std::floor((part + earlyBy(date.days())) * kASecond));
    return second * kASecond + std::clamp<std::int64_t>(passed, 0, kASecond - 1);
}

} // namespace nv
