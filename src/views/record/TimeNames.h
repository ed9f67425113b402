#pragma once

#include <cstdint>
#include <string_view>

namespace nv {

/// What the name of a parameter says of a number in it: most numbers are ids, counts or chance, and
/// many of them would be times by their length.
enum class NameSays : std::uint8_t {
    nothing,
    time,         ///< a time by any clock
    milliseconds, ///< what keeps a browser from taking an old copy: a time only by this clock
};
NameSays saysOfTime(std::string_view name);

} // namespace nv
