#pragma once

#include "readers/Reader.h"

#include <string>
#include <string_view>
#include <unordered_set>

namespace nv {

/// The addresses that the history in the folder of another file of the profile lists: what that
/// file has of other pages is all that is left of them.
class HistoryBeside {
  public:
    HistoryBeside(ReadContext &ctx, std::string_view procedure);

    bool holds(const std::string &url) const { return m_urls.contains(url); }
    /// What an examiner has to know of `stored` records that were made of pages it doesn't hold,
    /// and of `held` ones that weren't.
    void note(ReadResult &result, std::uint64_t stored, std::uint64_t held) const;

  private:
    std::unordered_set<std::string> m_urls;
    bool m_isRead = false;
    bool m_isUnreadable = false;
};

} // namespace nv
