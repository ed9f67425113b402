#pragma once

#include <cstdint>
#include <vector>

namespace nv {

/// Ids of rows, ascending, each once.
using FoundIds = std::vector<std::int32_t>;

FoundIds bothOf(const FoundIds &one, const FoundIds &other);
FoundIds eitherOf(const FoundIds &one, const FoundIds &other);
FoundIds without(const FoundIds &all, const FoundIds &taken);

/// Takes out of a list in any order what wasn't found.
void keepOnly(const FoundIds &found, std::vector<std::int32_t> &list);

} // namespace nv
