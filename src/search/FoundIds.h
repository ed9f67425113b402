#pragma once

#include <cstdint>
#include <vector>

namespace nv {

/// Ids of rows, ascending, each once.
using FoundIds = std::vector<std::int32_t>;

FoundIds bothOf(const FoundIds &one, const FoundIds &other);
FoundIds eitherOf(const FoundIds &one, const FoundIds &other);
FoundIds without(const FoundIds &all, const FoundIds &taken);

} // namespace nv
