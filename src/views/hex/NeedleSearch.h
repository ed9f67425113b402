#pragma once

#include "views/hex/HexFind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace nv {

/// Looks for needles in bytes that are in memory.
class NeedleSearch {
  public:
    explicit NeedleSearch(std::vector<HexNeedle> needles);

    bool hasNeedles() const { return !m_needles.empty(); }
    /// Bytes of the longest match there can be: so many behind a block are looked at with it.
    std::uint64_t longest() const { return m_longest; }
    /// The first match that begins at `from` or behind it, among the first `starts` bytes of the
    /// block, by its place there.
    std::optional<HexMatch> firstIn(std::string_view block, std::size_t from,
                                    std::size_t starts) const;

  private:
    std::vector<HexNeedle> m_needles;
    std::array<bool, 256> m_first{}; ///< bytes that a match can begin with
    std::uint64_t m_longest = 0;
};

} // namespace nv
