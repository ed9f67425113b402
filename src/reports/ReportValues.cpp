#include "reports/ReportValues.h"

#include "base/Text.h"

#include <string>
#include <utility>

namespace nv {

ZoneDate actionDate(const URLClass &record, const ReportContext &ctx) {
    const DateSettings &settings = ctx.settings.dates;
    ZonedDate date = zonedDate(record.ActionDateUTC, ctx.GMTZone, settings);
    if (!date.local.has())
        return {};
    return {formatDate(date.local, settings.DateTimeFormat()), std::move(date.offset),
            std::move(date.code)};
}

std::string visitsText(std::int64_t visits) {
    return visits == kVisitsUnknown ? std::string() : std::to_string(visits);
}

bool isWeekly(const URLClass &record) {
    return toUpper(record.cacheType) == "IE WEEKLY";
}

std::string_view dateColour(const URLClass &record) {
    return isWeekly(record) ? kWeeklyColour : kZoneColour;
}

} // namespace nv
