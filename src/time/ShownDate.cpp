#include "time/ShownDate.h"

#include "base/Text.h"
#include "time/Daylight.h"

namespace nv {

namespace {

constexpr int kYearsShown = 10;
constexpr std::size_t kShortestCell = 5;
constexpr int kLastYearWithoutMark = 1980;

/// No date when it is missing or too old to be shown.
Date shownDate(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings) {
    const Date local = convertDateToZone(actionDateUTC, zone, settings.enableDSTChanges);
    const bool shown = local.has() && local.civil().year >= settings.currentYear - kYearsShown;
    return shown ? local : Date();
}

} // namespace

bool shownAsDaylight(Date local, const TimeZone &zone, const DateSettings &settings) {
    return settings.enableDSTChanges && isDSTInEffect(local, zone.tzLatitudeBias);
}

std::string zoneCell(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings) {
    const Date local = shownDate(actionDateUTC, zone, settings);
    if (!local.has())
        return {};
    const std::string text = formatDate(local, settings.dateTimeFormat()) +
                             (shownAsDaylight(local, zone, settings) ? " DST" : " STD");
    return charCount(trim(text)) < kShortestCell ? std::string() : text;
}

std::string zoneProperty(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings) {
    const Date local = shownDate(actionDateUTC, zone, settings);
    if (!local.has())
        return {};
    const std::string mark = shownAsDaylight(local, zone, settings)
                                 ? zone.getBiasAsTime(zone.tzDSTBias) + " DST"
                                 : zone.getBiasAsTime(0) + " STD";
    return formatDate(local, settings.dateTimeFormat()) + " [" + mark + "]";
}

std::string utcCell(Date actionDateUTC, const DateSettings &settings) {
    return formatDate(actionDateUTC, settings.dateTimeFormat());
}

std::string utcProperty(Date actionDateUTC, const DateSettings &settings) {
    if (!actionDateUTC.has())
        return {};
    const bool marked = actionDateUTC.civil().year > kLastYearWithoutMark;
    return utcCell(actionDateUTC, settings) + (marked ? " [UTC]" : "");
}

std::string zoneHeading(const TimeZone &zone) {
    const std::string offset = zone.getBiasAsTime(0);
    const bool zero = offset.find_first_not_of("+-0") == std::string::npos;
    return (zero ? "[" : "[UTC ") + offset + "]";
}

} // namespace nv
