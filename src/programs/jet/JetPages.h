#pragma once

#include "programs/jet/JetFile.h"

#include <cstdint>
#include <vector>

namespace nv::jet {

// Which pages hold a table's rows. The library's own way through a damaged list can crash.

/// The pages that the table's list names, in order; those that don't belong to the table are left
/// out. All that do when the list makes no sense.
std::vector<std::uint32_t> listedPages(const JetFile &file, const MdbTableDef &table);

/// The pages that belong to the table by their own word and are not among `listed`.
std::vector<std::uint32_t> unlistedPages(const JetFile &file, const MdbTableDef &table,
                                         const std::vector<std::uint32_t> &listed);

} // namespace nv::jet
