#pragma once

#include "db/schema/Ids.h"
#include "rebuild/exact/RecordProfile.h"
#include "time/Date.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace nv {

struct UrlRecord;

/// A record that could stand for a reference.
struct PartCandidate {
    UrlId id = UrlId::none;
    bool hasBody = false;
    int strangeness = 0; ///< 0 from the page's own profile; what was recovered comes last
    double distance = 0; ///< days from the page's own time
};

/// What one rule finds for an address.
struct CandidateList {
    std::string rule; ///< one of `partrule`
    /// The first is the one to take. Those without a body, which may be redirects, come last.
    std::vector<PartCandidate> best;
    std::int64_t count = 0; ///< of all that have a body
};

/// How many records of an address are tried and told of.
inline constexpr std::size_t kMostCandidates = 11;

/// Finds the cached records of addresses, for one page. Among several those of the page's own
/// profile come first, then those nearest in time to the page, then those of lower keys; what was
/// recovered from deleted space stands behind what was not. Keeps what it has found.
class PartCandidates {
  public:
    /// Both must outlive it.
    PartCandidates(SQLite::Database &project, const UrlRecord &page);

    /// Looks many addresses up at once, so that of() has them at hand.
    void prepare(std::span<const std::string> addresses);
    /// By the exact address, or without its fragment.
    CandidateList of(const std::string &address);
    /// By "https:" where a page of "https:" asks for "http:": browsers ask so by themselves, or
    /// because page or server want it, and the cache has that address.
    CandidateList byHttps(const std::string &address);
    /// By the letters of the address, of records of which no more is known.
    CandidateList byLetters(const std::string &address);
    /// By its path, whatever the query.
    CandidateList byOtherQuery(const std::string &address);

  private:
    struct Found {
        std::vector<PartCandidate> best;
        std::int64_t count = 0;
    };
    struct ByAddress {
        Found exact;
        Found decoded;
    };

    std::string byHttpsOnly(const std::string &address) const;
    void lookUp(std::span<const std::string> addresses);
    const ByAddress &known(const std::string &address);
    const Found &onPath(const std::string &path);
    PartCandidate candidateIn(SQLite::Statement &row);

    SQLite::Database &m_project;
    double m_pageDate = 0;     ///< days; NaN for none
    std::int64_t m_source = 0; ///< the page's
    RecordProfiles m_profiles;
    bool m_isHttps;                                     ///< the page's address
    bool m_hasClientKeys;                               ///< in the project
    std::unordered_map<std::string, ByAddress> m_known; ///< by address
    std::unordered_map<std::string, Found> m_paths;     ///< by address without query
};

} // namespace nv
