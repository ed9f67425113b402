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

/// Blocks that an address of Chrome's cache can name: 8 bits for the file, 16 for the block. A
/// chain of entries ends at a block that was met before, so all chains together have no more steps.
inline constexpr std::size_t kChromeCacheBlocks = std::size_t{1} << 24;

} // namespace nv::limits
