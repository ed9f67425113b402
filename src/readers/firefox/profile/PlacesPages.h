#pragma once

#include "readers/Reader.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/sqlite/EvidenceDatabase.h"
#include "readers/sqlite/VisitTable.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace nv {

/// A row of table `moz_historyvisits`, small: there may be millions.
struct PlaceVisit {
    static constexpr std::int64_t kNothing = std::numeric_limits<std::int64_t>::min();

    std::int64_t id = 0; ///< of its row
    std::int64_t place = kNothing;
    std::int64_t from = kNothing; ///< a visit's id; 0 for none
    std::int64_t date = kNothing; ///< as stored
    std::int64_t type = kNothing;
    std::int64_t source = kNothing;
    bool isTold = false; ///< the page's own row stands for it

    static std::optional<std::int64_t> known(std::int64_t value) {
        return value == kNothing ? std::nullopt : std::optional(value);
    }
};

/// Visits and pages of a "places.sqlite", each table read in one pass: what rows need of other
/// rows.
class PlacesPages {
  public:
    struct Page {
        PlaceVisit *first = nullptr; ///< its first visit in the order of rows; null for none
        std::uint64_t visits = 0;
        bool isListed = false; ///< table `moz_places` has it
        bool isHidden = false;
        std::string_view url; ///< as stored
        std::string_view title;
    };

    /// False when `goOn` said so. A table that is damaged or missing is no failure but a loss: what
    /// was read of it stays.
    bool readVisits(EvidenceDatabase &database, const GoOn &goOn);
    /// Addresses and titles of the pages. False as above; the loss is told by those who read the
    /// table for its rows.
    bool readTexts(EvidenceDatabase &database, const GoOn &goOn);

    /// Null for a page that no row names.
    Page *find(std::int64_t place);
    /// The same, noting that the page is listed.
    Page *listed(std::int64_t place);
    /// Empty when the page isn't known any more.
    std::string_view urlOf(std::int64_t place);
    /// The address of the page from which the visit came; empty when that isn't known.
    std::string_view referrerOf(const PlaceVisit &visit);

    /// Whether a listed page is of that row of table `moz_origins`.
    bool hasPageOf(std::int64_t origin) const { return m_origins.contains(origin); }

    std::deque<PlaceVisit> &visits() { return m_visits; }
    /// Android's browser keeps the same tables with dates in milliseconds.
    MozUnit unit() const { return m_isAndroid ? MozUnit::milliseconds : MozUnit::microseconds; }
    bool isAndroid() const { return m_isAndroid; }
    /// What of the visits could not be read, for people; empty when nothing.
    const std::string &loss() const { return m_loss; }
    /// Visits of listed pages beyond one a page.
    std::uint64_t furtherVisits() const;
    /// Visits that name no page, or one that isn't listed: its row was removed.
    std::uint64_t visitsOfUnlistedPages() const;

  private:
    bool readAllVisits(EvidenceDatabase &database, const GoOn &goOn);
    bool readAllTexts(EvidenceDatabase &database, const GoOn &goOn);
    std::string_view kept(std::string_view text);

    std::deque<PlaceVisit> m_visits; ///< by rising id; addresses stay
    std::unordered_map<std::int64_t, Page> m_pages;
    std::deque<std::string> m_texts; ///< blocks that the pages' texts stand in, one behind another
    std::unordered_set<std::int64_t> m_origins; ///< of listed pages
    std::uint64_t m_withoutPage = 0;
    bool m_isAndroid = false;
    std::string m_loss;
};

/// What a visit is, in words, and where it came from.
void addVisitFacts(FactList &facts, const PlaceVisit &visit, bool isAndroid);
/// "typed", "download" ...; empty for a number that Firefox has not given.
std::string visitTypeWord(const PlaceVisit &visit);

namespace visits {
inline constexpr std::int64_t kTyped = 2;
inline constexpr std::int64_t kBookmark = 3;
inline constexpr std::int64_t kDownload = 7;
} // namespace visits

} // namespace nv
