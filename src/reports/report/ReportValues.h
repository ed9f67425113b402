#pragma once

#include "db/records/UrlRecord.h"
#include "reports/report/ReportContext.h"

#include <string>
#include <string_view>

namespace nv {

inline constexpr std::string_view kWeeklyColour = "#FC9F0C";
inline constexpr std::string_view kZoneColour = "#C00000";

/// A date in the project's zone.
struct ZoneDate {
    std::string text;     ///< empty without a date
    std::string bias;     ///< "-0500"
    std::string daylight; ///< "DST" or "STD"; of an exact zone its own abbreviation
};
/// Of the record's action. Throws std::range_error as convertDateToZone() does.
ZoneDate actionDate(const UrlRecord &record, const ReportContext &ctx);

/// Empty where the artefact counts no visits.
std::string visitsText(std::int64_t visits);

bool isWeekly(const UrlRecord &record);
std::string_view dateColour(const UrlRecord &record);

} // namespace nv
