#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nv {

/// From the least id to the greatest one.
struct IdRange {
    std::int32_t first = 0;
    std::int32_t last = 0;

    std::size_t size() const { return static_cast<std::size_t>(std::int64_t{last} - first) + 1; }
    /// Bits for all of them would take more room than so many ids.
    bool isWideFor(std::size_t ids) const { return size() / kMostBits > ids; }

  private:
    static constexpr std::size_t kMostBits = 256; // an id, so that the bits are few beside the rows
};

/// Which ids of a range are there, a bit each.
class IdBits {
  public:
    IdBits(const std::vector<std::int32_t> &ids, const IdRange &range)
        : m_first(range.first), m_bits(range.size(), false) {
        for (const std::int32_t id : ids) {
            m_count += m_bits[placeOf(id)] ? 0 : 1;
            m_bits[placeOf(id)] = true;
        }
    }
    bool has(std::int64_t id) const {
        return id >= m_first && placeOf(id) < m_bits.size() && m_bits[placeOf(id)];
    }
    /// How many there are, each once.
    std::size_t count() const { return m_count; }
    /// Ascending.
    std::vector<std::int32_t> ids() const {
        std::vector<std::int32_t> all;
        all.reserve(m_count);
        for (std::size_t place = 0; place < m_bits.size(); ++place)
            if (m_bits[place])
                all.push_back(
                    static_cast<std::int32_t>(m_first + static_cast<std::int64_t>(place)));
        return all;
    }

  private:
    std::size_t placeOf(std::int64_t id) const { return static_cast<std::size_t>(id - m_first); }

    std::int32_t m_first;
    std::size_t m_count = 0;
    std::vector<bool> m_bits;
};

} // namespace nv
