#pragma once

#include "time/Date.h"

#include <any>
#include <cstdint>
#include <memory>
#include <string>

namespace nv {

class ExactZone;

/// A zone. Biases are in minutes; a zone read from the database has west of Greenwich positive.
///
/// A new one is the default zone, Eastern Time, whose `tzBias` is negative against that rule:
/// it converts in the other direction from the database's row of the same name. Dates in earlier
/// cases were shown so, and the zone is replaced as soon as the machine or the project names one.
///
/// All of this is the classic zone, which knows one offset and one daylight rule. An exact zone has
/// its law beside it, which then decides each date: see setExactZone().
struct TimeZone {
    /// `now` decides whether daylight time is in effect.
    explicit TimeZone(Date now) { setToDefault(now); }

    std::int16_t tzActiveBias = 0;    ///< in force now, as shown
    std::int32_t tzTimeZoneID = 0;    ///< `timeZoneID` of the row in `Time_Zones`
    std::int16_t tzLongitudeBias = 0; ///< sign of `tzBias`: -1, 0 or 1
    std::any tzDSTEnds;               ///< stored only
    std::any tzDSTBegins;             ///< stored only
    std::string tzDaylightCode;       ///< such as "EDT"
    std::string tzDaylightName;       ///< such as "Eastern Daylight Time"
    std::string tzStandardCode;       ///< such as "EST"
    std::string tzStandardName;       ///< such as "Eastern Standard Time"
    std::int16_t tzDSTBias = 0;       ///< added to `tzBias` while daylight time is in effect
    std::int16_t tzLatitudeBias = 0;  ///< 1 northern, -1 southern, else no daylight time
    std::string daylightCode;         ///< shown at present: `dstCode`, "DST" or "STD"
    bool dstAdjustment = false;       ///< a daylight adjustment applies to this zone now
    std::string tzBiasAsText;         ///< `formatBiasText` of the active bias, east positive
    bool dstInEffect = false;         ///< at the moment the zone was set
    std::int16_t tzBias = 0;          ///< used for converting dates
    std::string tzName;               ///< such as "(UTC-05:00) Eastern Time (US & Canada)"
    /// None for a classic zone.
    std::shared_ptr<const ExactZone> exact;

    /// Makes this the default zone again; `tzDSTBias` stays as it is.
    void setToDefault(Date now);
    /// Leaves the members that name the zone alone, but for `tzName`.
    void reset();
    /// The offset from UTC, east positive: "-0500". "+0000" when `tzBias` is 0, whatever the extra
    /// minutes.
    std::string getBiasAsTime(int extraMinutes) const;
};

/// "UTC" for 0, otherwise sign, hours and minutes: "-0500". East positive.
std::string formatBiasText(std::int16_t minutes);

/// The UTC date in the zone. In a classic one the daylight rule is asked for the UTC date, and
/// `tzDSTBias` is added without regard to the hemisphere; throws std::range_error when the sum of
/// the biases leaves 16 bits. In an exact one its law alone decides: `enableDSTChanges` is the
/// classic ones' switch.
Date convertDateToZone(Date utc, const TimeZone &zone, bool enableDSTChanges);

} // namespace nv
