#pragma once

#include "readers/firefox/mork/MorkCollections.h"

#include <cstdint>

namespace nv {

/// The row with the values that its cells hold or name. An id that no dictionary has gives an empty
/// text, and so does a column that isn't there.
MorkEntry morkEntryOf(const MorkRow &row, const MorkValues &values);

/// The length of the entry's texts.
std::uint64_t textSizeOf(const MorkEntry &entry);

} // namespace nv
