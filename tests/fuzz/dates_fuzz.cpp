// Stamps and formats out of evidence and settings files: nothing may throw, and what is a date lies
// in the calendar.

#include "time/DateFormat.h"
#include "time/Daylight.h"
#include "time/ExactZone.h"
#include "time/ShownDate.h"
#include "time/SourceClocks.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return offset; }
    std::chrono::minutes offset{0};
};

void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkDate(nv::Date date, std::string_view format) {
    nv::formatDate(date, format);
    require(nv::isoUtc(date).empty() != date.has());
    if (!date.has())
        return;
    require(date.civil().year >= 100 && date.civil().year <= 9999);
    require(nv::Date::fromUnixSeconds(date.unixSeconds()) == date);
    const bool above = date.days() > 0;
    require((nv::isDSTInEffect(date, 1) != nv::isDSTInEffect(date, -1)) == above);
}

void checkZone(nv::Date date, std::int16_t bias, std::string_view format) {
    nv::TimeZone zone(date);
    zone.tzBias = static_cast<std::int16_t>(bias / 2);
    zone.tzDSTBias = static_cast<std::int16_t>(bias / 4);
    nv::DateSettings settings;
    settings.dateFormat = format;
    nv::zoneCell(date, zone, settings);
    nv::zoneProperty(date, zone, settings);
    nv::zoneHeading(zone);
}

/// Each date is a moment of each zone, and a rule is one or none.
void checkExactZones(nv::Date date, std::string_view rule) {
    static const nv::ExactZones zones("/usr/share/zoneinfo");
    static const auto berlin = zones.find("Europe/Berlin");
    static const auto casablanca = zones.find("Africa/Casablanca");
    if (!date.has())
        return;
    for (const auto &zone : {berlin, casablanca}) {
        const auto hours = std::chrono::abs(zone->at(date).offset) / std::chrono::hours(1);
        require(hours < 24 && !zone->at(date).abbreviation.empty());
        nv::TimeZone shown(date);
        nv::setExactZone(shown, zone, date);
        nv::zoneProperty(date, shown, {});
    }
    if (const auto footer = nv::ZoneFooter::parse(rule))
        require(!footer->at(date.unixSeconds()).abbreviation.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::uint64_t stamp = 0;
    std::memcpy(&stamp, data, size < sizeof stamp ? size : sizeof stamp);
    const std::string_view text =
        size > sizeof stamp
            ? std::string_view(reinterpret_cast<const char *>(data), size).substr(sizeof stamp)
            : std::string_view();
    const auto number = static_cast<std::int64_t>(stamp);
    const auto low = static_cast<std::uint16_t>(stamp);

    StillClock clock;
    clock.offset = std::chrono::minutes(static_cast<std::int16_t>(low));
    double seconds = 0;
    std::memcpy(&seconds, &stamp, sizeof seconds);

    require(nv::unixSecondsToDate(number).has());
    require(nv::unixSecondsToDate(text).has());
    for (const nv::Date date : {nv::unixSecondsToDate(number), nv::unixSecondsToDate(text),
                                nv::secondsToDate1970(seconds), nv::secondsToDate2001(seconds),
                                nv::chromeTimeToDate(number), nv::chromeTimeToDate(stamp),
                                nv::fileTimeToUtc(stamp), nv::fileTimeToLocalDate(stamp, clock),
                                nv::dosDateToUtc(low, static_cast<std::uint16_t>(stamp >> 16))}) {
        checkDate(date, text);
        checkZone(date, static_cast<std::int16_t>(low), text);
        checkExactZones(date, text);
    }
    return 0;
}
