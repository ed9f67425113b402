#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace nv {

/// Seconds since 1970-01-01 00:00 of millions of events, in the order in which they were put in:
/// four bytes each from then until 2106, sixteen more for the few of other times.
class EventSeconds {
  public:
    void reserve(std::size_t events) { m_near.reserve(events); }
    void push_back(std::int64_t second) {
        const bool isNear = second >= 0 && second < kFar;
        if (!isNear)
            m_far.emplace_back(m_near.size(), second);
        m_near.push_back(isNear ? static_cast<std::uint32_t>(second) : kFar);
    }
    std::size_t size() const { return m_near.size(); }
    bool empty() const { return m_near.empty(); }
    std::int64_t operator[](std::size_t at) const {
        return m_near[at] == kFar ? farAt(at) : m_near[at];
    }

  private:
    static constexpr std::uint32_t kFar = std::numeric_limits<std::uint32_t>::max();

    std::int64_t farAt(std::size_t at) const {
        return std::lower_bound(m_far.begin(), m_far.end(),
                                std::pair(at, std::numeric_limits<std::int64_t>::min()))
            ->second;
    }

    std::vector<std::uint32_t> m_near;
    std::vector<std::pair<std::size_t, std::int64_t>> m_far; ///< by place, ascending
};

} // namespace nv
