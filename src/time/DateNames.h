#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace nv {

/// English on every machine, as formats and headers of the web have them.
inline constexpr std::array<std::string_view, 12> kMonthNames = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
inline constexpr std::array<std::string_view, 7> kWeekdayNames = {
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
/// Letters of the short form of such a name.
inline constexpr std::size_t kShortDateName = 3;

} // namespace nv
