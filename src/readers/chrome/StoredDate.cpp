#include "readers/chrome/StoredDate.h"

#include "readers/FactDate.h"
#include "time/SourceClocks.h"

namespace nv {

namespace {

constexpr std::int64_t kMicrosecondsInASecond = 1'000'000;
constexpr int kDigitsOfMicroseconds = 6;

} // namespace

Date chromeDate(std::optional<std::int64_t> stored) {
    return stored.value_or(0) == 0 ? Date() : chromeTimeToDate(*stored);
}

void addChromeDate(FactList &facts, FactName name, std::optional<std::int64_t> stored) {
    if (stored.value_or(0) == 0)
        return;
    const std::int64_t rest = *stored % kMicrosecondsInASecond;
    const std::int64_t fraction = rest < 0 ? rest + kMicrosecondsInASecond : rest;
    facts.add(name, factDate(chromeTimeToDate(*stored), fraction, kDigitsOfMicroseconds), *stored);
}

void addSeconds(FactList &facts, FactName name, std::int64_t microseconds) {
    facts.add(name, static_cast<double>(microseconds) / static_cast<double>(kMicrosecondsInASecond),
              microseconds);
}

} // namespace nv
