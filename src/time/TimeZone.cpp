#include "time/TimeZone.h"

#include "time/Daylight.h"
#include "time/ExactZone.h"

#include <fmt/format.h>

#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace nv {

namespace {

std::string hoursAndMinutes(int minutes) {
    return fmt::format("{:02}{:02}", std::abs(minutes) / 60, std::abs(minutes) % 60);
}

char signOf(int minutes) {
    return minutes < 0 ? '-' : '+';
}

int daylightBias(const TimeZone &zone) {
    const int sum = zone.tzBias + zone.tzDSTBias;
    using Limits = std::numeric_limits<std::int16_t>;
    if (sum < Limits::min() || sum > Limits::max())
        throw std::range_error(
            fmt::format("the zone's biases {} and {} add up to more than 16 bits", zone.tzBias,
                        zone.tzDSTBias));
    return sum;
}

} // namespace

void TimeZone::setToDefault(Date now) {
    exact.reset();
    daylightCode = tzDaylightCode = "EDT";
    dstAdjustment = true;
    tzBias = -300;
    tzDaylightName = "Eastern Daylight Time";
    tzLatitudeBias = 1;
    tzLongitudeBias = -1;
    tzName = "(UTC-05:00) Eastern Time (US & Canada)";
    tzStandardCode = "EST";
    tzStandardName = "Eastern Standard Time";
    tzTimeZoneID = 15;
    dstInEffect = isDSTInEffect(now, 1);
    tzActiveBias = dstInEffect ? 240 : 300;
    tzBiasAsText = formatBiasText(dstInEffect ? -240 : -300);
}

void TimeZone::reset() {
    exact.reset();
    tzName.clear();
    tzBiasAsText.clear();
    tzBias = 0;
    dstInEffect = false;
    dstAdjustment = false;
}

std::string TimeZone::getBiasAsTime(int extraMinutes) const {
    if (tzBias == 0)
        return "+0000";
    const int bias = -(tzBias + extraMinutes);
    // An offset that only the extra minutes bring to 0 has no sign; that of a zone at UTC has.
    if (bias == 0)
        return "0000";
    return signOf(bias) + hoursAndMinutes(bias);
}

std::string formatBiasText(std::int16_t minutes) {
    return minutes == 0 ? "UTC" : signOf(minutes) + hoursAndMinutes(minutes);
}

Date convertDateToZone(Date utc, const TimeZone &zone, bool enableDSTChanges) {
    if (zone.exact)
        return utc.has() ? utc.plusSeconds(zone.exact->at(utc).offset.count()) : Date();
    const bool daylight = isDSTInEffect(utc, zone.tzLatitudeBias) && enableDSTChanges;
    return utc.plusMinutes(daylight ? -daylightBias(zone) : -zone.tzBias);
}

} // namespace nv
