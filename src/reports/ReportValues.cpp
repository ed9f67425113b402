#include "reports/ReportValues.h"

#include "base/Text.h"
#include "readers/RecordKind.h"

#include <string>

namespace nv {

ZoneDate actionDate(const UrlRecord &record, const ReportContext &ctx) {
    const DateSettings &settings = ctx.settings.dates;
    const TimeZone &zone = ctx.gmtZone;
    const Date local = convertDateToZone(record.ActionDateUTC, zone, settings.enableDSTChanges);
    if (!local.has())
        return {};
    const bool daylight = shownAsDaylight(local, zone, settings);
    return {formatDate(local, settings.dateTimeFormat()),
            zone.getBiasAsTime(daylight ? zone.tzDSTBias : 0), daylight ? "DST" : "STD"};
}

std::string visitsText(std::int64_t visits) {
    return visits == kVisitsUnknown ? std::string() : std::to_string(visits);
}

bool isWeekly(const UrlRecord &record) {
    const RecordKind *kind = recordKind(record.cacheType);
    return kind && kind->inLocalTime;
}

std::string_view dateColour(const UrlRecord &record) {
    return isWeekly(record) ? kWeeklyColour : kZoneColour;
}

} // namespace nv
