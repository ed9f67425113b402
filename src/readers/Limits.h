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

/// A property list in XML form. Its tree takes up to sixteen times its size in memory, and a
/// history of 150,000 pages has this size.
inline constexpr std::size_t kPropertyListBytes = std::size_t{64} << 20;

/// Elements within each other in a property list. Browsers nest six deep; what goes deeper is built
/// to exhaust the stack of programs that descend by recursion.
inline constexpr int kPropertyListDepth = 256;

/// The property list of one cached response: its headers, which servers limit to some 64 KB.
inline constexpr std::size_t kResponseBytes = std::size_t{1} << 20;

/// Look-ups of single rows that take longer than any honest one, each at a cost of some 10 ms. A
/// table that makes them so has lost the key by which browsers find rows.
inline constexpr std::uint64_t kSlowLookUps = 100;

} // namespace nv::limits
