#pragma once

#include "base/DisplayText.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace nv {

/// So many bytes always hold one character more than a cell shows.
inline constexpr std::size_t kCellBytes = (kCellChars + 1) * 4;

/// The short word of the Type column for a `CacheType`.
std::string typeWord(std::string_view cacheType);

} // namespace nv
