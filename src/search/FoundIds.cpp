#include "search/FoundIds.h"

#include "search/IdBits.h"

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

namespace {

/// Looking each row up in a long list would take most of the time in which millions are narrowed.
void eraseWhere(const FoundIds &found, bool isFound, std::vector<std::int32_t> &list) {
    const IdRange range{found.front(), found.back()};
    if (range.isWideFor(found.size())) {
        std::erase_if(list, [&](std::int32_t id) {
            return std::ranges::binary_search(found, id) == isFound;
        });
        return;
    }
    const IdBits bits(found, range);
    std::erase_if(list, [&](std::int32_t id) { return bits.has(id) == isFound; });
}

} // namespace

std::vector<std::int32_t> sortedIds(const std::vector<std::int32_t> &list) {
    if (std::ranges::is_sorted(list))
        return list;
    const auto [least, greatest] = std::ranges::minmax_element(list);
    const IdRange range{*least, *greatest};
    if (!range.isWideFor(list.size())) {
        auto ids = IdBits(list, range).ids();
        if (ids.size() == list.size())
            return ids;
    }
    auto ids = list;
    std::ranges::sort(ids);
    return ids;
}

void keepOnly(const FoundIds &found, std::vector<std::int32_t> &list) {
    if (found.empty())
        return list.clear();
    eraseWhere(found, false, list);
}

void leaveOut(const FoundIds &found, std::vector<std::int32_t> &list) {
    if (!found.empty())
        eraseWhere(found, true, list);
}

} // namespace nv
