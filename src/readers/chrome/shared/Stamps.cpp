#include "readers/chrome/shared/Stamps.h"

#include "readers/FactDate.h"
#include "readers/chrome/shared/StoredDate.h"

namespace nv {

namespace {

/// Seconds until the year 9999 have 12 digits, microseconds of 1602 have 14.
constexpr std::int64_t kLeastMicroseconds = 10'000'000'000'000;

} // namespace

Date stampDate(std::optional<std::int64_t> stored) {
    if (stored.value_or(0) <= 0)
        return {};
    return *stored < kLeastMicroseconds ? Date::fromUnixSeconds(*stored) : chromeDate(stored);
}

void addStamp(FactList &facts, FactName name, std::optional<std::int64_t> stored) {
    if (stored.value_or(0) >= kLeastMicroseconds)
        addChromeDate(facts, name, stored);
    else if (stored.value_or(0) != 0)
        facts.add(name, factDate(stampDate(stored)), *stored);
}

} // namespace nv
