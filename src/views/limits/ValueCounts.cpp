#include "views/limits/ValueCounts.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace nv {

namespace {

/// Values come from evidence: a column can hold another one in each row.
constexpr std::size_t kMostValues = 200'000;

std::size_t hashOf(std::string_view value) {
    return std::hash<std::string_view>()(value);
}

/// The bits that don't say where it lies.
std::uint32_t markOf(std::size_t hash) {
    return static_cast<std::uint32_t>(std::uint64_t{hash} >> 32);
}

} // namespace

/// Where it is, or the free slot where it would be.
ValueCounts::Slot &ValueCounts::slotOf(std::string_view value, std::size_t hash) {
    const std::size_t last = m_slots.size() - 1;
    std::size_t at = hash & last;
    while (m_slots[at].place != kNone &&
           (m_slots[at].mark != markOf(hash) || m_counts[m_slots[at].place].first != value))
        at = (at + 1) & last;
    return m_slots[at];
}

void ValueCounts::grow() {
    m_slots.assign(m_slots.size() * 2, Slot());
    for (std::uint32_t place = 0; place < m_counts.size(); ++place) {
        const std::string &value = m_counts[place].first;
        const std::size_t hash = hashOf(value);
        slotOf(value, hash) = {markOf(hash), place};
    }
}

void ValueCounts::add(std::string_view value) {
    if (m_last == kNone || m_counts[m_last].first != value) {
        const std::size_t hash = hashOf(value);
        Slot &slot = slotOf(value, hash);
        m_last = slot.place;
        if (m_last == kNone && m_counts.size() < kMostValues) {
            m_last = static_cast<std::uint32_t>(m_counts.size());
            slot = {markOf(hash), m_last};
            m_counts.emplace_back(value, 0);
            if (m_counts.size() * 2 > m_slots.size())
                grow();
        }
    }
    if (m_last == kNone)
        m_isCut = true;
    else
        ++m_counts[m_last].second;
}

CountedValues ValueCounts::most(std::size_t most) const {
    std::vector<std::uint32_t> order(m_counts.size());
    std::iota(order.begin(), order.end(), 0);
    const std::size_t told = std::min(most, order.size());
    std::ranges::partial_sort(order, order.begin() + static_cast<std::ptrdiff_t>(told),
                              [&](auto left, auto right) {
                                  const auto &[one, rows] = m_counts[left];
                                  const auto &[other, otherRows] = m_counts[right];
                                  return rows != otherRows ? rows > otherRows : one < other;
                              });
    CountedValues counted{{}, m_isCut || told < order.size()};
    counted.values.reserve(told);
    for (std::size_t at = 0; at < told; ++at)
        counted.values.push_back(m_counts[order[at]]);
    return counted;
}

} // namespace nv
