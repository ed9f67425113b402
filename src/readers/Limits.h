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

// The history of Firefox 2 is read in memory, where each of its bytes costs several. A profile of
// years has some ten thousand pages in a few MB.

/// What is read of the file.
inline constexpr std::size_t kMorkFileBytes = std::size_t{256} << 20;

/// Browsers break lines after some 80 characters; a longer URL makes a line longer, but not this
/// long.
inline constexpr std::size_t kMorkLineBytes = std::size_t{16} << 20;

/// The 20th part of this is the longest URL that the browser could open.
inline constexpr std::size_t kMorkValueBytes = std::size_t{1} << 20;

/// The browser knows 13 columns.
inline constexpr std::size_t kMorkColumns = 10'000;

/// Each page brings about four values.
inline constexpr std::size_t kMorkValues = 4'000'000;
inline constexpr std::size_t kMorkRows = 500'000;

/// Texts of all entries. Every row may name the same value, so that a small file can hold more text
/// than any memory.
inline constexpr std::size_t kMorkTextBytes = std::size_t{256} << 20;

/// What is read of a file of Opera. Its index tells of a cache of 400 MB at most, in some MB.
inline constexpr std::size_t kOperaFileBytes = std::size_t{256} << 20;

/// The list of typed addresses holds some hundred; an element of 4 bytes takes 100 in memory.
inline constexpr std::size_t kOperaTypedBytes = std::size_t{16} << 20;

} // namespace nv::limits
