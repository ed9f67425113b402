#pragma once

#include <cstdint>
#include <vector>

namespace nv {

/// Ids of rows, ascending, each once.
using FoundIds = std::vector<std::int32_t>;

FoundIds bothOf(const FoundIds &one, const FoundIds &other);
FoundIds eitherOf(const FoundIds &one, const FoundIds &other);
FoundIds without(const FoundIds &all, const FoundIds &taken);

/// A list in any order, ascending; what is in it twice stays so.
std::vector<std::int32_t> sortedIds(const std::vector<std::int32_t> &list);
/// Takes out of a list in any order what wasn't found.
void keepOnly(const FoundIds &found, std::vector<std::int32_t> &list);
/// Takes out of a list in any order what was found.
void leaveOut(const FoundIds &found, std::vector<std::int32_t> &list);

} // namespace nv
