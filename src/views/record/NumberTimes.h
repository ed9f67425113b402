#pragma once

#include "time/Date.h"

#include <optional>
#include <string_view>

namespace nv {

/// A date that a text may stand for, and by which rule.
struct ReadTime {
    Date utc;
    std::string_view rule; ///< "Unix time in seconds"
};

inline constexpr std::string_view kUnixSeconds = "Unix time in seconds";
inline constexpr std::string_view kUnixMilliseconds = "Unix time in milliseconds";

/// What a number says when it is a time from 2001-09-09 to 2033-05-18, of the seconds from
/// 1,000,000,000 up to 2,000,000,000, in one of the clocks that sites and browsers count by. Each
/// length of digits belongs to one clock alone, so a number has one reading at most, and digits
/// that spell a date (2011030112) have none. Whether a number is a time at all, it doesn't tell.
/// `digits` holds nothing else; a fraction after a point is passed over.
std::optional<ReadTime> timeOfNumber(std::string_view digits);

/// The time within a UUID of version 1, "xxxxxxxx-xxxx-1xxx-xxxx-xxxxxxxxxxxx".
std::optional<ReadTime> timeOfUuid(std::string_view text);

} // namespace nv
