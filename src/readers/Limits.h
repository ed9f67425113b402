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

/// URL and headers of one entry of Firefox's disk cache: four blocks of 4096 bytes hold them in
/// every sound cache, while damaged lengths go up to 4 GB each.
inline constexpr std::int64_t kFirefoxCacheMetaData = std::int64_t{64} << 10;

/// A body in a block file of that cache: four blocks again, at most 16 KiB. Thousands of entries
/// may claim 4 GB each, and every body is copied while it is imported.
inline constexpr std::uint64_t kFirefoxCacheBlockBody = std::uint64_t{1} << 20;

} // namespace nv::limits
