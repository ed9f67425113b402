#include "time/ShownDate.h"

#include "base/Text.h"
#include "time/Daylight.h"
#include "time/ExactZone.h"

namespace nv {

namespace {

constexpr int kYearsShown = 10;
constexpr std::size_t kShortestCell = 5;
constexpr int kLastYearWithoutMark = 1980;

/// Missing, or too old to be shown. The limit is the classic zones': theirs is today's law, which
/// is the more often wrong the older a date is.
bool isHidden(Date local, const TimeZone &zone, const DateSettings &settings) {
    if (!local.has())
        return true;
    return !zone.exact && local.civil().year < settings.currentYear - kYearsShown;
}

} // namespace

bool shownAsDaylight(Date local, const TimeZone &zone, const DateSettings &settings) {
    return settings.enableDSTChanges && isDSTInEffect(local, zone.tzLatitudeBias);
}

ZonedDate zonedDate(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings) {
    if (!actionDateUTC.has())
        return {};
    if (zone.exact) {
        const ZoneMoment law = zone.exact->at(actionDateUTC);
        return {actionDateUTC.plusSeconds(law.offset.count()), offsetText(law.offset),
                law.abbreviation};
    }
    const Date local = convertDateToZone(actionDateUTC, zone, settings.enableDSTChanges);
    const bool daylight = local.has() && shownAsDaylight(local, zone, settings);
    return {local, zone.getBiasAsTime(daylight ? zone.tzDSTBias : 0), daylight ? "DST" : "STD"};
}

std::string zoneCell(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings) {
    const ZonedDate date = zonedDate(actionDateUTC, zone, settings);
    if (isHidden(date.local, zone, settings))
        return {};
    const std::string text = formatDate(date.local, settings.dateTimeFormat()) + " " + date.code;
    return charCount(trim(text)) < kShortestCell ? std::string() : text;
}

std::string zoneProperty(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings) {
    const ZonedDate date = zonedDate(actionDateUTC, zone, settings);
    if (isHidden(date.local, zone, settings))
        return {};
    return formatDate(date.local, settings.dateTimeFormat()) + " [" + date.offset + " " +
           date.code + "]";
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
    if (zone.exact)
        return "[" + zone.exact->name() + "]";
    const std::string offset = zone.getBiasAsTime(0);
    const bool zero = offset.find_first_not_of("+-0") == std::string::npos;
    return (zero ? "[" : "[UTC ") + offset + "]";
}

} // namespace nv
