#include "readers/chrome/shared/StoredDate.h"

#include "readers/FactDate.h"
#include "time/SourceClocks.h"

namespace nv {

namespace {

constexpr std::int64_t kMicrosecondsInASecond = 1'000'000;
constexpr int kDigitsOfMicroseconds = 6;

/// Of the second that has begun, before 1601 as well.
std::int64_t fractionOf(std::int64_t microseconds) {
    const std::int64_t rest = microseconds % kMicrosecondsInASecond;
    return rest < 0 ? rest + kMicrosecondsInASecond : rest;
}

} // namespace

Date chromeDate(std::optional<std::int64_t> stored) {
    return stored.value_or(0) == 0 ? Date() : chromeTimeToDate(*stored);
}

Date chromeMoment(std::optional<std::int64_t> stored) {
    const Date second = chromeDate(stored);
    const std::int64_t microseconds = second.has() ? fractionOf(*stored) : 0;
    return second.has() ? Date::fromUnixMicroseconds(second.unixSeconds() * kMicrosecondsInASecond +
                                                     microseconds)
                        : second;
}

void addChromeDate(FactList &facts, FactName name, std::optional<std::int64_t> stored) {
    if (stored.value_or(0) == 0)
        return;
    facts.add(name, factDate(chromeTimeToDate(*stored), fractionOf(*stored), kDigitsOfMicroseconds),
              *stored);
}

void addSeconds(FactList &facts, FactName name, std::int64_t microseconds) {
    facts.add(name, static_cast<double>(microseconds) / static_cast<double>(kMicrosecondsInASecond),
              microseconds);
}

} // namespace nv
