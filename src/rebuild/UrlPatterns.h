#pragma once

#include "db/sql/LikePattern.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace nv {

/// Many texts that are searched for in many URLs at once, each as LIKE '%text%' would: in either
/// case, with the pattern's own characters meaning what they mean there. A page's thousand
/// references so cost one walk over the URLs and not a thousand.
class UrlPatterns {
  public:
    /// Returns the text's number, counted from 0; nothing for a text that makes no valid pattern.
    std::optional<std::size_t> add(std::string_view text);

    /// Calls `found` once for each text that `url` holds, in no particular order.
    void find(std::string_view url, const std::function<void(std::size_t number)> &found);

  private:
    struct Plain {
        std::string text; ///< lower-case
        std::size_t number;
        std::size_t keyAt; ///< where in `text` the key stands
    };
    void report(std::size_t number, const std::function<void(std::size_t)> &found);

    std::size_t m_count = 0;
    /// By the eight bytes that are likely to tell texts apart, as one number.
    std::unordered_map<std::uint64_t, std::vector<Plain>> m_plain;
    std::vector<std::pair<LikePattern, std::size_t>> m_others;
    std::vector<std::size_t> m_seenIn; ///< by number: the last URL that held it, counted from 1
    std::size_t m_url = 0;
};

} // namespace nv
