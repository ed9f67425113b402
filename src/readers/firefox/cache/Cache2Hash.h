#pragma once

#include "base/ByteView.h"

#include <cstdint>

namespace nv {

/// The hash by which cache2 knows its own bytes again: Bob Jenkins's of 1996, begun with 0.
std::uint32_t cache2Hash(ByteView bytes);

} // namespace nv
