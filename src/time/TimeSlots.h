#pragma once

#include <cstdint>
#include <string>

namespace nv {

/// Into what a calendar is divided when events are counted.
enum class TimeUnit : std::uint8_t { year, month, day, hour, minute };

// A slot is one such division, numbered on without a gap: the year, months and days since 1970 and
// so on, below 0 before it. Seconds are those since 1970-01-01 00:00 by the clock on the wall.

std::int64_t slotOf(std::int64_t seconds, TimeUnit unit);
/// Its first second.
std::int64_t startOf(std::int64_t slot, TimeUnit unit);
/// "2011", "2011-03", "2011-03-01", "2011-03-01 19:00", "2011-03-01 19:10".
std::string slotText(std::int64_t slot, TimeUnit unit);
/// 0 to 23.
int hourOf(std::int64_t seconds);

} // namespace nv
