#include "rebuild/exact/PartCandidates.h"

#include "base/Text.h"
#include "db/RebuiltParts.h"
#include "db/StoredText.h"
#include "db/UrlRecord.h"
#include "readers/RecordKind.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <tuple>

namespace nv {

namespace {

/// SQLite takes 32,766 parameters, and a statement of many costs more to prepare than it saves.
constexpr std::size_t kAddressesAtOnce = 200;
/// Of one path. A counter's picture has as many queries as it was seen.
constexpr int kMostOnPath = 20'000;
constexpr int kOtherProfile = 1;
constexpr int kRecovered = 2;

constexpr const char *kColumns =
    "URL_ID, SourceFile_ID, CacheType, CacheFileExists, ActionDateUTC, URL";

bool isBetter(const PartCandidate &one, const PartCandidate &other) {
    const auto key = [](const PartCandidate &c) {
        return std::tuple(!c.hasBody, c.strangeness, c.distance, c.id);
    };
    return key(one) < key(other);
}

bool isOfCache(const std::string &cacheType) {
    return groupOf(cacheType) == RecordGroup::cache;
}

bool isRemnant(const std::string &cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    return kind && kind->key.ends_with("-remnant");
}

template <class Found>
void keep(Found &found, const PartCandidate &candidate) {
    found.count += candidate.hasBody ? 1 : 0;
    const auto place = std::upper_bound(found.best.begin(), found.best.end(), candidate, isBetter);
    found.best.insert(place, candidate);
    if (found.best.size() > kMostCandidates)
        found.best.pop_back();
}

bool hasOrigins(SQLite::Database &project) {
    return project
               .execAndGet("SELECT count(*) FROM pragma_table_xinfo('SourceFiles') WHERE name IN "
                           "('Browser', 'Profile', 'Person')")
               .getInt() == 3;
}

} // namespace

/// Whose the files are that records come from.
class PartCandidates::Sources {
  public:
    Sources(SQLite::Database &project, SourceFileId own) : m_own(number(own)) {
        if (hasOrigins(project))
            m_origin.emplace(project, "SELECT Browser, Profile, Person FROM SourceFiles WHERE "
                                      "SourceFile_ID = ?");
        m_ownOrigin = originOf(m_own);
    }

    bool isOwn(std::int64_t source) {
        if (source == m_own)
            return true;
        const auto known = m_isOwn.find(source);
        if (known != m_isOwn.end())
            return known->second;
        const bool isOwn = !m_ownOrigin.empty() && originOf(source) == m_ownOrigin;
        m_isOwn.emplace(source, isOwn);
        return isOwn;
    }

  private:
    /// Empty where nothing is known.
    std::string originOf(std::int64_t source) {
        if (!m_origin)
            return {};
        m_origin->reset();
        m_origin->bind(1, source);
        std::string origin;
        bool isKnown = false;
        if (m_origin->executeStep())
            for (int at = 0; at < 3; ++at) {
                const std::string text = m_origin->getColumn(at).getString();
                isKnown |= !text.empty();
                origin.append(text).append(1, '\0');
            }
        m_origin->reset();
        return isKnown ? origin : std::string();
    }

    std::int64_t m_own;
    std::optional<SQLite::Statement> m_origin;
    std::string m_ownOrigin;
    std::unordered_map<std::int64_t, bool> m_isOwn;
};

PartCandidates::PartCandidates(SQLite::Database &project, const UrlRecord &page)
    : m_project(project), m_pageDate(page.ActionDateUTC.days()),
      m_sources(std::make_unique<Sources>(project, page.SourceFile_ID)) {}

PartCandidates::~PartCandidates() = default;

PartCandidate PartCandidates::candidateOf(std::int64_t id, std::int64_t source,
                                          const std::string &cacheType, bool hasBody, double date) {
    PartCandidate candidate;
    candidate.id = UrlId{id};
    candidate.hasBody = hasBody;
    candidate.strangeness =
        (m_sources->isOwn(source) ? 0 : kOtherProfile) + (isRemnant(cacheType) ? kRecovered : 0);
    const double distance = std::abs(date - m_pageDate);
    candidate.distance = std::isnan(distance) ? std::numeric_limits<double>::max() : distance;
    return candidate;
}

namespace {

/// NaN for none.
double dateIn(const SQLite::Column &column) {
    return column.isNull() ? std::numeric_limits<double>::quiet_NaN() : column.getDouble();
}

} // namespace

void PartCandidates::lookUp(std::span<const std::string> addresses) {
    SQLite::Statement rows(m_project,
                           fmt::format("SELECT {} FROM URLs WHERE URL IN ({})", kColumns,
                                       fmt::join(std::vector<char>(addresses.size(), '?'), ", ")));
    int at = 0;
    for (const std::string &address : addresses) {
        bindText(rows, ++at, address);
        m_exact.try_emplace(address);
    }
    while (rows.executeStep()) {
        // Projects compare texts in either case; paths of the web differ by it.
        const auto found = m_exact.find(rows.getColumn(5).getString());
        const std::string cacheType = rows.getColumn(2).getString();
        if (found != m_exact.end() && isOfCache(cacheType))
            keep(found->second,
                 candidateOf(rows.getColumn(0).getInt64(), rows.getColumn(1).getInt64(), cacheType,
                             rows.getColumn(3).getInt() != 0, dateIn(rows.getColumn(4))));
    }
}

void PartCandidates::prepare(std::span<const std::string> addresses) {
    std::vector<std::string> unknown;
    unknown.reserve(addresses.size());
    for (const std::string &address : addresses) {
        unknown.push_back(address);
        if (const std::size_t at = address.find('#'); at != std::string::npos)
            unknown.push_back(address.substr(0, at));
    }
    std::ranges::sort(unknown);
    unknown.erase(std::unique(unknown.begin(), unknown.end()), unknown.end());
    std::erase_if(unknown,
                  [this](const std::string &address) { return m_exact.contains(address); });
    for (std::size_t from = 0; from < unknown.size(); from += kAddressesAtOnce)
        lookUp(std::span(unknown).subspan(from, std::min(kAddressesAtOnce, unknown.size() - from)));
}

const PartCandidates::Found &PartCandidates::exactly(const std::string &address) {
    const auto known = m_exact.find(address);
    if (known != m_exact.end())
        return known->second;
    lookUp(std::span(&address, 1));
    return m_exact[address];
}

/// What stands between "?" and the next character, "@", is a query: one part of the index.
const PartCandidates::Found &PartCandidates::onPath(const std::string &path) {
    const auto known = m_paths.find(path);
    if (known != m_paths.end())
        return known->second;
    Found &found = m_paths[path];
    SQLite::Statement rows(
        m_project, fmt::format("SELECT {} FROM URLs WHERE URL = ?1 UNION ALL SELECT * FROM (SELECT "
                               "{} FROM URLs WHERE URL >= ?2 AND URL < ?3 LIMIT {})",
                               kColumns, kColumns, kMostOnPath));
    const std::string from = path + '?';
    const std::string to = path + '@';
    bindText(rows, 1, path);
    bindText(rows, 2, from);
    bindText(rows, 3, to);
    while (rows.executeStep()) {
        const std::string url = rows.getColumn(5).getString();
        const std::string cacheType = rows.getColumn(2).getString();
        if (url.substr(0, url.find_first_of("?#")) == path && isOfCache(cacheType) &&
            rows.getColumn(3).getInt() != 0)
            keep(found, candidateOf(rows.getColumn(0).getInt64(), rows.getColumn(1).getInt64(),
                                    cacheType, true, dateIn(rows.getColumn(4))));
    }
    return found;
}

CandidateList PartCandidates::of(const std::string &address) {
    const Found &found = exactly(address);
    const std::size_t fragment = address.find('#');
    if (found.count > 0 || fragment == std::string::npos)
        return {partrule::kExact, found.best, found.count};
    const Found &plain = exactly(address.substr(0, fragment));
    return {partrule::kWithoutFragment, plain.best, plain.count};
}

CandidateList PartCandidates::byOtherQuery(const std::string &address) {
    const Found &found = onPath(address.substr(0, address.find_first_of("?#")));
    return {partrule::kOtherQuery, found.best, found.count};
}

} // namespace nv
