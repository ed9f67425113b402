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

/// What a number says when it is a time of the years 1995 to 2039 in one of the clocks that sites
/// and browsers count by. Each length of digits belongs to one clock alone, so a number has one
/// reading at most: the years are those that make it so (docs/guide/properties.md). `digits` holds
/// nothing else; a fraction after a point is passed over.
std::optional<ReadTime> timeOfNumber(std::string_view digits);

/// The time within a UUID of version 1, "xxxxxxxx-xxxx-1xxx-xxxx-xxxxxxxxxxxx".
std::optional<ReadTime> timeOfUuid(std::string_view text);

} // namespace nv
