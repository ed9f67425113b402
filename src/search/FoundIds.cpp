#include "search/FoundIds.h"

#include <algorithm>
#include <iterator>

namespace nv {

FoundIds bothOf(const FoundIds &one, const FoundIds &other) {
    FoundIds ids;
    std::ranges::set_intersection(one, other, std::back_inserter(ids));
    return ids;
}

FoundIds eitherOf(const FoundIds &one, const FoundIds &other) {
    FoundIds ids;
    ids.reserve(std::max(one.size(), other.size()));
    std::ranges::set_union(one, other, std::back_inserter(ids));
    return ids;
}

FoundIds without(const FoundIds &all, const FoundIds &taken) {
    FoundIds ids;
    std::ranges::set_difference(all, taken, std::back_inserter(ids));
    return ids;
}

void keepOnly(const FoundIds &found, std::vector<std::int32_t> &list) {
    std::erase_if(list,
                  [&found](std::int32_t id) { return !std::ranges::binary_search(found, id); });
}

} // namespace nv
