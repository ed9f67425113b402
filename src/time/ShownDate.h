#pragma once

#include "time/DateFormat.h"
#include "time/TimeZone.h"

#include <string>
#include <string_view>

namespace nv {

/// The settings that decide how a date is shown.
struct DateSettings {
    std::string dateFormat{kDateFormat};
    std::string timeFormat{kTimeFormat};
    bool enableDSTChanges = true;
    int currentYear = 0; ///< dates of a classic zone are shown from 10 years before it on

    std::string dateTimeFormat() const { return dateFormat + " " + timeFormat; }
};

/// True when the mark of a date of the zone is "DST". The mark is tested on the converted date and
/// the conversion on the UTC date: around a change of the clocks the two can differ.
bool shownAsDaylight(Date local, const TimeZone &zone, const DateSettings &settings);

/// A date in the zone with what stands after it.
struct ZonedDate {
    Date local;
    std::string offset; ///< "-0500"
    std::string code;   ///< "DST" or "STD"; of an exact zone its own abbreviation at that date
};
/// Throws std::range_error as convertDateToZone() does.
ZonedDate zonedDate(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings);

/// The zone's date in the table: "2009-02-13 18:31:30 STD". In a classic zone empty for a date of
/// more than 10 years ago. Throws std::range_error as convertDateToZone() does.
std::string zoneCell(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings);
/// The same date among the properties: "2009-02-13 18:31:30 [-0500 STD]".
std::string zoneProperty(Date actionDateUTC, const TimeZone &zone, const DateSettings &settings);

std::string utcCell(Date actionDateUTC, const DateSettings &settings);
/// With " [UTC]" after it when the year is above 1980.
std::string utcProperty(Date actionDateUTC, const DateSettings &settings);

/// What the heading of the zone's column says of the zone: "[UTC -0500]", or "[+0000]"; of an exact
/// one, which has no single offset, its name.
std::string zoneHeading(const TimeZone &zone);

} // namespace nv
