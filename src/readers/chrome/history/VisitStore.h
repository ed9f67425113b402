#pragma once

#include "db/records/FactList.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace nv {

/// A row of table `visits`, with what other tables say of it. Numbers are as they are stored.
struct StoredVisit {
    /// Where a column is empty, or a version hasn't got it.
    static constexpr std::int64_t kNothing = std::numeric_limits<std::int64_t>::min();

    std::int64_t id = 0;
    std::int64_t page = kNothing;
    std::int64_t time = kNothing;
    std::int64_t from = kNothing;
    std::int64_t opener = kNothing;
    std::int64_t transition = kNothing;
    std::int64_t segment = kNothing;
    std::int64_t duration = kNothing;    ///< microseconds
    std::int64_t deviceVisit = kNothing; ///< its number on the device that it came from
    std::int64_t source = kNothing;
    std::int64_t foreground = kNothing; ///< microseconds
    std::int64_t response = kNothing;
    std::int64_t cluster = kNothing;
    std::uint32_t language = 0; ///< a word of the store
    std::uint32_t device = 0;   ///< the same
};

/// Texts that few visits have.
struct VisitTexts {
    std::string externalReferrer;
    std::string searchTerms;
    std::string url;     ///< of a page that isn't listed any more, from another table
    std::string urlFrom; ///< which
};

/// The visits of a history by their number. A million take some 130 MB.
class VisitStore {
  public:
    /// Visits come in the order of their numbers in all files but damaged ones.
    void add(const StoredVisit &visit) { m_visits.push_back(visit); }
    /// To be called behind the last visit, before any is looked for.
    void settle();

    /// Null for a number that no visit has.
    StoredVisit *find(std::int64_t id);
    const StoredVisit *find(std::int64_t id) const;
    std::deque<StoredVisit> &visits() { return m_visits; }

    /// The file says where visits came from: one of which it says nothing was browsed there.
    void tellSources() { m_tellsSources = true; }
    bool tellsSources() const { return m_tellsSources; }

    VisitTexts &textsOf(std::int64_t visit) { return m_texts[visit]; }
    /// Null for the many that have none.
    const VisitTexts *findTexts(std::int64_t visit) const;

    /// A text that many visits share; 0 is the empty one.
    std::uint32_t wordFor(const std::string &text);
    const std::string &word(std::uint32_t number) const { return m_words.at(number); }

  private:
    std::deque<StoredVisit> m_visits;
    std::unordered_map<std::int64_t, VisitTexts> m_texts;
    std::vector<std::string> m_words{std::string()};
    std::unordered_map<std::string, std::uint32_t> m_numbers;
    bool m_tellsSources = false;
};

/// What the visit alone tells, but for the page that it came from.
void addVisitFacts(FactList &facts, const VisitStore &visits, const StoredVisit &visit);

} // namespace nv
