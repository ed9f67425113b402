#pragma once

#include "db/records/FactList.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>

namespace nv {

// Dates of Chromium's databases. The same column holds seconds since 1970 in one version and
// microseconds since 1601 in another one: the size of the number tells which. 0 is no date.

/// The date to the second, in UTC. Nothing, 0 and what is before the year 1601 are no date.
Date stampDate(std::optional<std::int64_t> stored);

/// The date as a fact, with its fraction, and the number as its raw form. Nothing is added for
/// nothing and for 0; a number that is no date stands as it is.
void addStamp(FactList &facts, FactName name, std::optional<std::int64_t> stored);

} // namespace nv
