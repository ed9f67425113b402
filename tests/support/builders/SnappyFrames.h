#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nv::test {

/// The text in Snappy's frames, at most 64 KB in each. Only zeros at its end are packed: a run of
/// them is a copy of the first one.
std::string snappyFrames(std::string_view text);
/// Whose checksums: Firefox leaves the last step out, in which all bits are turned over.
enum class SnappyBy { firefox, standard };

/// One frame of that kind with the checksum of `unpacked` before `stored`.
std::string snappyFrame(std::uint8_t kind, std::string_view unpacked, std::string_view stored,
                        SnappyBy by = SnappyBy::firefox);

/// The text alone as Snappy packs it, at most 64 KB.
std::string snappyPacked(std::string_view text);

/// CRC-32C as Snappy and LevelDB store it.
std::uint32_t maskedCrc(std::string_view bytes, SnappyBy by = SnappyBy::standard);

} // namespace nv::test
