#pragma once

#include "views/limits/ColumnLimit.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// How often each value came, of millions. What is looked up lies side by side, since to reach one
/// place of the memory after another takes longer than reading the rows.
class ValueCounts {
  public:
    void add(std::string_view value);
    /// There were more values than are counted: which of them depends on who came first.
    bool isCut() const { return m_isCut; }
    CountedValues most(std::size_t most) const;

  private:
    /// Of a value: its place in m_counts, and what others seldom share.
    struct Slot {
        std::uint32_t mark = 0;
        std::uint32_t place = kNone;
    };
    static constexpr std::uint32_t kNone = 0xffffffff;

    Slot &slotOf(std::string_view value, std::size_t hash);
    void grow();

    std::vector<std::pair<std::string, std::int64_t>> m_counts;
    std::vector<Slot> m_slots = std::vector<Slot>(1024); ///< a power of two, half of them free
    std::uint32_t m_last = kNone;                        ///< rows side by side often say the same
    bool m_isCut = false;
};

} // namespace nv
