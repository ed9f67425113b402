#pragma once

#include <cstdint>

namespace nv::indexfields {

// Where the fields of an index's record begin, in bytes from its signature. The reader and those
// who say where a value lies go by the same.

inline constexpr std::uint64_t kBlocks = 4;
inline constexpr std::uint64_t kFirstDate = 8;
inline constexpr std::uint64_t kSecondDate = 0x10;
inline constexpr std::uint64_t kRedirectUrl = 0x10;
inline constexpr std::uint64_t kExpires = 0x18;
inline constexpr std::uint64_t kFileSize = 0x20;
inline constexpr std::uint64_t kFolder = 0x38;
inline constexpr std::uint64_t kFileName = 0x3C;
inline constexpr std::uint64_t kHeaders = 0x44;
inline constexpr std::uint64_t kLastChecked = 0x50;
inline constexpr std::uint64_t kHits = 0x54;
inline constexpr std::uint64_t kCreated = 0x5C;
/// Where every version has it; the record's own offset is unused.
inline constexpr std::uint64_t kUrl = 0x68;

} // namespace nv::indexfields
