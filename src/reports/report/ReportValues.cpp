#include "reports/report/ReportValues.h"

#include "base/Text.h"
#include "readers/RecordKind.h"

#include <string>
#include <utility>

namespace nv {

ZoneDate actionDate(const UrlRecord &record, const ReportContext &ctx) {
    const DateSettings &settings = ctx.settings.dates;
    ZonedDate date = zonedDate(record.ActionDateUTC, ctx.gmtZone, settings);
    if (!date.local.has())
        return {};
    return {formatDate(date.local, settings.dateTimeFormat()), std::move(date.offset),
            std::move(date.code)};
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
