#pragma once

#include "readers/Body.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace nv {

/// Bytes of a whole that lie there one behind the other.
struct WarcStretch {
    std::uint64_t first = 0; ///< its first byte's place in the whole, 0-based
    std::uint64_t size = 0;  ///< bytes
};

/// The stretches that a content of `size` bytes was put together from, by the fact "byte_ranges":
/// "0-99, 200-299; missing 100-199". Empty where it doesn't tell all of them. Long ones are parted,
/// so that each can be held in memory.
std::vector<WarcStretch> stretchesIn(std::string_view fact, std::uint64_t size);

/// Bytes of a content. Throws FileFailure, and StorageFailure when there are fewer.
Body partOf(const Body &content, std::uint64_t offset, std::uint64_t size);

} // namespace nv
