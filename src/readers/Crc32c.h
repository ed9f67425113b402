#pragma once

#include <cstdint>
#include <string_view>

namespace nv {

/// CRC-32C, the checksum of Snappy's frames and of LevelDB's records.
std::uint32_t crc32c(std::string_view bytes);

/// A checksum as both store it: turned and added to, so that one over checksums stays one.
std::uint32_t maskedCrc(std::uint32_t crc);

} // namespace nv
