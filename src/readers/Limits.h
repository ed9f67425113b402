#pragma once

#include <cstddef>

// Caps that keep hostile files from taking the program down, each with its reason.
namespace nv::limits {

/// Content tests look no further: every signature stands in the first block of its format.
inline constexpr std::size_t kHeadBytes = std::size_t{64} << 10;

/// Hash tables of one Internet Explorer index. A chain that loops ends here; earlier cases were
/// counted with this cap.
inline constexpr std::size_t kIndexHashTables = 201;

} // namespace nv::limits
