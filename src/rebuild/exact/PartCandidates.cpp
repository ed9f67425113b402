#include "rebuild/exact/PartCandidates.h"

#include "address/WebAddress.h"
#include "base/Text.h"
#include "db/marks/RebuiltParts.h"
#include "db/records/UrlRecord.h"
#include "db/sql/StoredText.h"
#include "readers/RecordKind.h"
#include "rebuild/exact/RecordAddress.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

namespace nv {

namespace {

/// Each in a few spellings. SQLite takes 32,766 parameters, and a statement of many costs more to
/// prepare than it saves.
constexpr std::size_t kAddressesAtOnce = 200;
/// Of one path. A counter's picture has as many queries as it was seen.
constexpr int kMostOnPath = 20'000;
constexpr int kOtherProfile = 1;
constexpr int kRecovered = 2;

constexpr const char *kColumns =
    "URL_ID, SourceFile_ID, CacheType, CacheFileExists, ActionDateUTC, URL, URLRawValue";
enum Column { kId, kSource, kCacheType, kHasBody, kDate, kUrl, kRaw };

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

} // namespace

namespace {

/// Whether there are keys with a name in front of their address: the index has them between those
/// of "http:" and what comes behind its letters.
bool hasClientKeys(SQLite::Database &project) {
    return project
               .execAndGet("SELECT EXISTS(SELECT 1 FROM URLs WHERE URL >= 'HTTP:a' AND URL < "
                           "'HTTP:i')")
               .getInt() != 0;
}

/// NaN for none.
double dateIn(const SQLite::Column &column) {
    return column.isNull() ? std::numeric_limits<double>::quiet_NaN() : column.getDouble();
}

} // namespace

PartCandidates::PartCandidates(SQLite::Database &project, const UrlRecord &page)
    : m_project(project), m_pageDate(page.ActionDateUTC.days()),
      m_source(number(page.SourceFile_ID)), m_profiles(project),
      m_isHttps(startsWithNoCase(askedAddress(page.URL, page.URLRawValue), "https:")),
      m_hasClientKeys(hasClientKeys(project)) {}

PartCandidate PartCandidates::candidateIn(SQLite::Statement &row) {
    const bool isRecovered = isRemnant(row.getColumn(kCacheType).getString());
    PartCandidate candidate;
    candidate.id = UrlId{row.getColumn(kId).getInt64()};
    candidate.hasBody = row.getColumn(kHasBody).getInt() != 0;
    candidate.strangeness =
        (m_profiles.isSame(m_source, row.getColumn(kSource).getInt64()) ? 0 : kOtherProfile) +
        (isRecovered ? kRecovered : 0);
    const double distance = std::abs(dateIn(row.getColumn(kDate)) - m_pageDate);
    candidate.distance = std::isnan(distance) ? std::numeric_limits<double>::max() : distance;
    return candidate;
}

namespace {

/// The addresses that are looked for, by the spellings that the project may have of them.
class Wanted {
  public:
    Wanted(std::span<const std::string> addresses, bool hasClientKeys) {
        m_addresses.reserve(addresses.size());
        for (const std::string &address : addresses) {
            m_addresses.emplace_back(address);
            for (const std::string &spelling : spellingsOf(address, hasClientKeys))
                m_bySpelling[toLower(spelling)].push_back(m_addresses.size() - 1);
        }
    }

    /// Projects compare texts in either case; paths of the web differ by it.
    std::vector<std::string> spellings() const {
        std::vector<std::string> all;
        all.reserve(m_bySpelling.size());
        for (const auto &[spelling, addresses] : m_bySpelling)
            all.push_back(spelling);
        return all;
    }

    /// Calls `take` with each address that the record may have been asked for by.
    template <class Take>
    void eachOf(const std::string &url, const std::string &raw, Take &&take) const {
        const auto spelled = m_bySpelling.find(toLower(url));
        if (spelled == m_bySpelling.end())
            return;
        std::string asked = askedAddress(url, raw);
        if (const auto &only = spelled->second;
            only.size() == 1 && m_addresses[only[0]].text() == asked)
            return take(asked, AddressMatch::exact);
        const ComparedAddress compared(std::move(asked));
        for (const std::size_t at : spelled->second)
            if (const AddressMatch match = compared.to(m_addresses[at]);
                match != AddressMatch::other)
                take(m_addresses[at].text(), match);
    }

  private:
    std::vector<ComparedAddress> m_addresses;
    std::unordered_map<std::string, std::vector<std::size_t>> m_bySpelling; ///< in small letters
};

} // namespace

void PartCandidates::lookUp(std::span<const std::string> addresses) {
    const Wanted wanted(addresses, m_hasClientKeys);
    const std::vector<std::string> spellings = wanted.spellings();
    SQLite::Statement rows(m_project,
                           fmt::format("SELECT {} FROM URLs WHERE URL IN ({})", kColumns,
                                       fmt::join(std::vector<char>(spellings.size(), '?'), ", ")));
    int at = 0;
    for (const std::string &spelling : spellings)
        bindText(rows, ++at, spelling);
    for (const std::string &address : addresses)
        m_known.try_emplace(address);
    while (rows.executeStep())
        if (isOfCache(rows.getColumn(kCacheType).getString()))
            wanted.eachOf(rows.getColumn(kUrl).getString(), rows.getColumn(kRaw).getString(),
                          [&](const std::string &address, AddressMatch match) {
                              ByAddress &found = m_known[address];
                              keep(match == AddressMatch::exact ? found.exact : found.decoded,
                                   candidateIn(rows));
                          });
}

void PartCandidates::prepare(std::span<const std::string> addresses) {
    std::vector<std::string> unknown;
    unknown.reserve(addresses.size() * 2);
    for (const std::string &address : addresses) {
        unknown.push_back(address);
        if (const std::size_t at = address.find('#'); at != std::string::npos)
            unknown.push_back(address.substr(0, at));
        if (const std::string safe = byHttpsOnly(address); !safe.empty())
            unknown.push_back(safe);
    }
    std::ranges::sort(unknown);
    unknown.erase(std::unique(unknown.begin(), unknown.end()), unknown.end());
    std::erase_if(unknown,
                  [this](const std::string &address) { return m_known.contains(address); });
    for (std::size_t from = 0; from < unknown.size(); from += kAddressesAtOnce)
        lookUp(std::span(unknown).subspan(from, std::min(kAddressesAtOnce, unknown.size() - from)));
}

const PartCandidates::ByAddress &PartCandidates::known(const std::string &address) {
    if (!m_known.contains(address))
        lookUp(std::span(&address, 1));
    return m_known[address];
}

namespace {

/// What stands between "?" and the next character, "@", is a query: one part of the index for each
/// spelling of the path.
std::string rowsOnPaths(std::size_t count) {
    const std::string onPath = fmt::format("SELECT {0} FROM URLs WHERE URL = ? UNION ALL SELECT * "
                                           "FROM (SELECT {0} FROM URLs WHERE URL >= ? AND URL < ? "
                                           "LIMIT {1})",
                                           kColumns, kMostOnPath);
    return fmt::format("{}", fmt::join(std::vector<std::string>(count, onPath), " UNION ALL "));
}

bool liesOnPath(const std::string &asked, const std::string &path) {
    if (asked.starts_with(path) &&
        (asked.size() == path.size() || asked[path.size()] == '?' || asked[path.size()] == '#'))
        return true;
    const auto parsed = WebAddress::parsed(asked);
    return parsed && parsed->upToPath() == path;
}

} // namespace

const PartCandidates::Found &PartCandidates::onPath(const std::string &path) {
    const auto there = m_paths.find(path);
    if (there != m_paths.end())
        return there->second;
    Found &found = m_paths[path];
    std::vector<std::string> limits;
    for (const std::string &spelling : spellingsOf(path, m_hasClientKeys))
        limits.insert(limits.end(), {spelling, spelling + '?', spelling + '@'});
    SQLite::Statement rows(m_project, rowsOnPaths(limits.size() / 3));
    int at = 0;
    for (const std::string &limit : limits)
        bindText(rows, ++at, limit);
    while (rows.executeStep()) {
        if (rows.getColumn(kHasBody).getInt() != 0 &&
            isOfCache(rows.getColumn(kCacheType).getString()) &&
            liesOnPath(
                askedAddress(rows.getColumn(kUrl).getString(), rows.getColumn(kRaw).getString()),
                path))
            keep(found, candidateIn(rows));
    }
    return found;
}

CandidateList PartCandidates::of(const std::string &address) {
    const Found &found = known(address).exact;
    const std::size_t fragment = address.find('#');
    if (found.count > 0 || fragment == std::string::npos)
        return {partrule::kExact, found.best, found.count};
    const Found &plain = known(address.substr(0, fragment)).exact;
    return {partrule::kWithoutFragment, plain.best, plain.count};
}

/// Without its fragment; empty where nothing is asked for so.
std::string PartCandidates::byHttpsOnly(const std::string &address) const {
    constexpr std::string_view kPlain = "http://";
    if (!m_isHttps || !address.starts_with(kPlain))
        return {};
    const auto safe = WebAddress::parsed("https://" + address.substr(kPlain.size()));
    return safe ? safe->withoutFragment() : std::string();
}

CandidateList PartCandidates::byHttps(const std::string &address) {
    const std::string safe = byHttpsOnly(address);
    if (safe.empty())
        return {partrule::kByHttps, {}, 0};
    const Found &found = known(safe).exact;
    return {partrule::kByHttps, found.best, found.count};
}

CandidateList PartCandidates::byLetters(const std::string &address) {
    const Found &found = known(address.substr(0, address.find('#'))).decoded;
    return {partrule::kDecoded, found.best, found.count};
}

CandidateList PartCandidates::byOtherQuery(const std::string &address) {
    const Found &found = onPath(address.substr(0, address.find_first_of("?#")));
    return {partrule::kOtherQuery, found.best, found.count};
}

} // namespace nv
