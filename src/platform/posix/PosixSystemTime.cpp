#include "platform/posix/PosixSystemTime.h"

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <ctime>
#include <memory>

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

std::chrono::minutes SystemClock::localOffset() const {
    const std::time_t moment = std::chrono::system_clock::to_time_t(now());
    tm local{};
    tzset(); // localtime_r needn't notice a change of the zone by itself
    if (localtime_r(&moment, &local) == nullptr)
        return {};
    return std::chrono::floor<std::chrono::minutes>(std::chrono::seconds(local.tm_gmtoff));
}

} // namespace nv
