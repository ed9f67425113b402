#pragma once

#include "time/Date.h"

#include <string_view>

namespace nv {

/// The date of a header field such as "Wed, 09 Mar 2011 18:00:00 GMT": day, month's English name
/// and year, then a time, parted by blanks, commas or "-"; a name of a day may stand before. Years
/// of two digits are 1930 to 2029. No date where anything else stands in it: a zone other than GMT,
/// for one, would make it another instant.
Date headerDate(std::string_view text);

/// The date of a header field without its first five characters, which are the day's name, a comma
/// and a blank in the usual form. Other forms have never been read, so they give no date.
Date headerDateBehindDayName(std::string_view text);

} // namespace nv
