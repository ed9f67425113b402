#pragma once

#include "readers/sqlite/EvidenceDatabase.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace nv {

/// Asked now and then during a long pass with the part that is done, 0 to 1; false ends it.
using GoOn = std::function<bool(double fraction)>;

/// The table of single visits beside a table of pages, read in one pass: how many each page has.
class VisitTable {
  public:
    struct Page {
        std::uint64_t visits = 0;
        bool isListed = false; ///< a row of the table of pages has asked for it
    };

    struct Columns {
        std::string_view table;
        std::string_view page;
    };

    /// False when `goOn` said so. A table that is damaged or missing is no failure but a loss: what
    /// was read of it stays.
    bool read(EvidenceDatabase &database, const Columns &columns, const GoOn &goOn);

    /// Null for a page that no visit row names. Notes that the page is listed.
    const Page *listed(std::int64_t page);

    bool isThere() const { return m_isThere; }
    /// What could not be read, for people; empty when nothing.
    const std::string &loss() const { return m_loss; }
    /// Visits of listed pages beyond one a page.
    std::uint64_t furtherVisits() const;
    /// Visits that name no page, or one that isn't listed: its row was removed.
    std::uint64_t visitsOfUnlistedPages() const;

  private:
    bool readAll(EvidenceDatabase &database, const Columns &columns, const GoOn &goOn);

    std::unordered_map<std::int64_t, Page> m_pages;
    std::uint64_t m_withoutPage = 0;
    bool m_isThere = true;
    std::string m_loss;
};

} // namespace nv
