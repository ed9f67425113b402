#pragma once

#include "base/TaskMonitor.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What other tables need to know of a row of table `urls`.
struct ListedPage {
    static constexpr std::size_t kNoVisit = std::numeric_limits<std::size_t>::max();

    std::int64_t id = 0;
    std::int64_t lastVisit = 0; ///< as stored
    std::string_view url;       ///< these lie in the table that the page is of
    std::string_view title;
    std::size_t visit = kNoVisit; ///< the place of the visit that the page's record stands for
    bool isHidden = false;
};

/// The pages of a history by their number. A million pages with their addresses and titles take
/// some 150 MB.
class PageTable {
  public:
    /// A page that can't be read isn't there. False when cancelled. Throws EvidenceDamage without
    /// the table.
    [[nodiscard]] bool read(EvidenceDatabase &database, TaskMonitor &task);

    /// Null for a number that no row has.
    ListedPage *find(std::int64_t id);
    const ListedPage *find(std::int64_t id) const;
    std::vector<ListedPage> &pages() { return m_pages; }

  private:
    std::string_view keep(std::string_view text);

    std::vector<ListedPage> m_pages;   ///< by number
    std::deque<std::string> m_texts{}; ///< none grows beyond what was set aside for it
};

} // namespace nv
