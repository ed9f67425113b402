#pragma once

#include <optional>
#include <string_view>

namespace nv {

/// A place on the earth, in degrees of WGS 84; south and west are negative.
struct Position {
    double latitude = 0;  ///< -90 to 90
    double longitude = 0; ///< -180 to 180

    friend bool operator==(const Position &, const Position &) = default;
};

/// Nothing for what no place can be.
std::optional<Position> positionAt(double latitude, double longitude);

/// Of an address that names a place in the ways of maps: "@51.5072,-0.1276", "geo:51.5,-0.1", or
/// parameters such as "ll=51.5072,-0.1276" and "lat=51.5072&lon=-0.1276". It is what was shown or
/// looked for, not where anybody was.
std::optional<Position> positionInAddress(std::string_view address);

} // namespace nv
