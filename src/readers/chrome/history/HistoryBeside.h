#pragma once

#include "readers/Reader.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

namespace nv {

/// The addresses that the history in the folder of another file of the profile lists: what that
/// file has of other pages is all that is left of them.
class HistoryBeside {
  public:
    HistoryBeside(ReadContext &ctx, std::string_view procedure);

    /// Counts a page of the other file. True when the history holds it: no record is made of it.
    bool holds(const std::string &url);
    /// What an examiner has to know of the pages that were asked for.
    void note(ReadResult &result) const;

  private:
    std::unordered_set<std::string> m_urls;
    bool m_isRead = false;
    bool m_isUnreadable = false;
    std::uint64_t m_held = 0;
    std::uint64_t m_missing = 0;
};

} // namespace nv
