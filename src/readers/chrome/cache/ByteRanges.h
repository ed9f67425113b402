#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace nv {

/// A stretch of a whole that isn't all there. In bytes.
struct ByteRange {
    std::uint64_t first = 0;
    std::uint64_t size = 0;
};

/// "bytes 0-16383, 65536-131071; missing 16384-65535" of ranges in the order of their places;
/// `whole` is how long all of it would be, 0 when nobody knows. Without a gap there is no
/// "missing". Long lists end in how many more there are.
std::string byteRangesText(const std::vector<ByteRange> &ranges, std::uint64_t whole);

} // namespace nv
