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

namespace {

constexpr std::size_t kMostBits = 256; // an id, so that the bits are few beside the rows

/// From the least id to the greatest one.
struct IdRange {
    std::int32_t first = 0;
    std::int32_t last = 0;

    std::size_t size() const { return static_cast<std::size_t>(std::int64_t{last} - first) + 1; }
    bool isWideFor(std::size_t ids) const { return size() / kMostBits > ids; }
};

/// Which ids of a range are there, a bit each.
class IdBits {
  public:
    IdBits(const std::vector<std::int32_t> &ids, const IdRange &range)
        : m_first(range.first), m_bits(range.size(), false) {
        for (const std::int32_t id : ids)
            m_bits[placeOf(id)] = true;
    }
    bool has(std::int32_t id) const {
        return id >= m_first && placeOf(id) < m_bits.size() && m_bits[placeOf(id)];
    }
    /// Ascending.
    std::vector<std::int32_t> ids() const {
        std::vector<std::int32_t> all;
        for (std::size_t place = 0; place < m_bits.size(); ++place)
            if (m_bits[place])
                all.push_back(
                    static_cast<std::int32_t>(m_first + static_cast<std::int64_t>(place)));
        return all;
    }

  private:
    std::size_t placeOf(std::int32_t id) const {
        return static_cast<std::size_t>(std::int64_t{id} - m_first);
    }
    std::int32_t m_first;
    std::vector<bool> m_bits;
};

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
