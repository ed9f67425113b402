#pragma once

#include "time/Date.h"

#include <string>
#include <string_view>

namespace nv {

inline constexpr std::string_view kDateFormat = "yyyy-mm-dd";
inline constexpr std::string_view kTimeFormat = "Hh:Nn:Ss";

/// The date by the letters of the Options dialog, in either case: yyyy yy, m mm mmm mmmm (month;
/// minutes when m or mm follows the hours), d dd ddd dddd, h hh, n nn, s ss, and AM/PM, A/P or
/// AMPM, which also make the hours run from 1 to 12. "24:00:00" means "Hh:Nn:Ss". A letter after
/// "\" and text in double quotes stand as they are, as does every other character. Names are
/// English on every machine. Empty without a date.
std::string formatDate(Date date, std::string_view format);

/// ISO 8601, such as "2009-02-13T23:31:30Z", of a date that is in UTC. Empty without a date.
std::string isoUtc(Date utc);

} // namespace nv
