#include "platform/posix/PosixSystemTime.h"

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <string_view>

namespace nv {

namespace {

constexpr int kMillisecondsPerMinute = 60'000;

std::unique_ptr<icu::TimeZone> findZone(const std::string &ianaName) {
    return std::unique_ptr<icu::TimeZone>(
        ianaName.empty() ? icu::TimeZone::detectHostTimeZone()
                         : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(ianaName)));
}

/// Empty when the zone lists have no such zone.
std::string listedName(const icu::TimeZone &zone) {
    icu::UnicodeString ianaName;
    icu::UnicodeString name;
    UErrorCode status = U_ZERO_ERROR;
    icu::TimeZone::getWindowsID(zone.getID(ianaName), name, status);
    std::string text;
    return U_SUCCESS(status) ? name.toUTF8String(text) : text;
}

std::chrono::minutes offsetAt(std::time_t moment) {
    tm local{};
    tzset(); // localtime_r needn't notice a change of the zone by itself
    if (localtime_r(&moment, &local) == nullptr)
        return {};
    return std::chrono::floor<std::chrono::minutes>(std::chrono::seconds(local.tm_gmtoff));
}

} // namespace

MachineZone PosixSystemTime::zone() const {
    const auto zone = findZone(m_ianaName);
    if (!zone)
        return {};
    return {-zone->getRawOffset() / kMillisecondsPerMinute, listedName(*zone)};
}

Clock::TimePoint SystemClock::now() const {
    return std::chrono::system_clock::now();
}

/// Readers ask for each record, and the library looks at the machine's file of zones each time: one
/// look a second is enough, as long as the program's own zone stays.
std::chrono::minutes SystemClock::localOffset() const {
    struct Known {
        std::time_t moment = -1;
        std::string zone;
        std::chrono::minutes offset{};
    };
    thread_local Known known;
    const std::time_t moment = std::chrono::system_clock::to_time_t(now());
    const char *named = std::getenv("TZ");
    const std::string_view zone = named ? named : "(the machine's)";
    if (known.moment != moment || known.zone != zone)
        known = {moment, std::string(zone), offsetAt(moment)};
    return known.offset;
}

} // namespace nv
