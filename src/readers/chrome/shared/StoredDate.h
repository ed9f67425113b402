#pragma once

#include "db/records/FactList.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>

namespace nv {

/// Microseconds since 1601. The browser stores 0 for what never happened; it is not the year 1601.
Date chromeDate(std::optional<std::int64_t> stored);
/// The same with the fraction of the second: visits of one second, such as the hops of a
/// redirect, stand in their order. Not for rows of the classic rules alone.
Date chromeMoment(std::optional<std::int64_t> stored);

/// The date with its fraction of a second; nothing for what never happened. What is no date stays
/// as it is stored.
void addChromeDate(FactList &facts, FactName name, std::optional<std::int64_t> stored);

/// A span in seconds, of microseconds.
void addSeconds(FactList &facts, FactName name, std::int64_t microseconds);

} // namespace nv
