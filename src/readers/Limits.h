#pragma once

#include <cstddef>
#include <cstdint>

// Caps that keep hostile files from taking the program down, each with its reason.
namespace nv::limits {

/// Content tests look no further: every signature stands in the first block of its format.
inline constexpr std::size_t kHeadBytes = std::size_t{64} << 10;

/// Hash tables of one Internet Explorer index. A chain that loops ends here; earlier cases were
/// counted with this cap.
inline constexpr std::size_t kIndexHashTables = 201;

/// What a packed body may unpack to. Cached bodies are pages, scripts and pictures of a few MB; a
/// body that grows beyond this is built to fill the disk and stays packed.
inline constexpr std::uint64_t kUnpackedBytes = std::uint64_t{256} << 20;

/// The text file of a cookie, as far as it is kept. The browser holds a host's cookies to some
/// hundred KB; a longer file is none of its own.
inline constexpr std::uint64_t kCookieText = std::uint64_t{1} << 20;

} // namespace nv::limits
