#include "readers/chrome/Stamps.h"

#include "time/DateFormat.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <string>

namespace nv {

namespace {

constexpr std::int64_t kMicroseconds = 1'000'000; // a second

/// Seconds until the year 9999 have 12 digits, microseconds of 1602 have 14.
constexpr std::int64_t kLeastMicroseconds = 10'000'000'000'000;

std::string stampText(std::int64_t stored) {
    const std::string day = formatDate(stampDate(stored), "yyyy-mm-dd Hh:Nn:Ss");
    const std::int64_t fraction = stored < kLeastMicroseconds ? 0 : stored % kMicroseconds;
    return day.empty() || fraction == 0 ? day : fmt::format("{}.{:06}", day, fraction);
}

} // namespace

Date stampDate(std::optional<std::int64_t> stored) {
    if (stored.value_or(0) <= 0)
        return {};
    return *stored < kLeastMicroseconds ? Date::fromUnixSeconds(*stored)
                                        : chromeTimeToDate(*stored);
}

void addStamp(FactList &facts, FactName name, std::optional<std::int64_t> stored) {
    if (stored.value_or(0) != 0)
        facts.add(name, stampText(*stored), *stored);
}

} // namespace nv
