#include "reports/ReportValues.h"

#include "base/Text.h"
#include "readers/RecordKind.h"

#include <string>

namespace nv {

ZoneDate actionDate(const URLClass &record, const ReportContext &ctx) {
    const DateSettings &settings = ctx.settings.dates;
    const TimeZoneClass &zone = ctx.GMTZone;
    const Date local = ConvertDateToZone(record.ActionDateUTC, zone, settings.EnableDSTChanges);
    if (!local.has())
        return {};
    const bool daylight = shownAsDaylight(local, zone, settings);
    return {formatDate(local, settings.DateTimeFormat()),
            zone.GetBiasAsTime(daylight ? zone.tzDSTBias : 0), daylight ? "DST" : "STD"};
}

std::string visitsText(std::int64_t visits) {
    return visits == kVisitsUnknown ? std::string() : std::to_string(visits);
}

bool isWeekly(const URLClass &record) {
    const RecordKind *kind = recordKind(record.cacheType);
    return kind && kind->inLocalTime;
}

std::string_view dateColour(const URLClass &record) {
    return isWeekly(record) ? kWeeklyColour : kZoneColour;
}

} // namespace nv
