#pragma once

#include <string>
#include <string_view>

namespace nv::test {

// Pictures of the made site, drawn, as PNG files.

// All throw std::invalid_argument for a name that there isn't.

/// A view of the harbour by its name ("lighthouse", "ferry", "boats", "market", "storm", "night",
/// "bridge", "harbour"), `width` points wide and 9/16 as high.
std::string sceneOf(std::string_view name, int width);
/// 120 by 80 points like no other: colours and stripes come from the name.
std::string tileOf(std::string_view name);
/// Small things: "buoy", "rope", "paper", "frame", "sky", "sun", "cloud", "rain", "wood", "gull",
/// "face1" to "face3".
std::string signOf(std::string_view name);

} // namespace nv::test
