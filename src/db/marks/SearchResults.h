#pragma once

#include "time/Date.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

inline constexpr const char *kSearchResultsTable = "SearchResults";
inline constexpr const char *kSearchHitsTable = "SearchHits";

/// What a search or a list of keywords has found, kept under a name.
struct SearchResult {
    std::int64_t resultID = 0;
    std::string name;
    std::string kind;       ///< "Search" or "Keywords"
    std::string searchText; ///< for people
    std::string filePath;   ///< of a list
    std::string sha256Hash; ///< of that file
    Date madeUTC;
    std::int64_t rowCount = 0;
    std::string appVersion;
};

/// A row that a result holds; once for each term and field of a list, once for a search.
struct ResultHit {
    std::int64_t urlID = 0;
    std::string term;
    std::string field;
    std::int64_t hits = 0; ///< how often it stands there; 0 for a search
};

/// Results that are kept with the project. Each is a stored query of its name too, which gives its
/// rows: so tables, exports and reports take it without knowing of results. The tables are made on
/// first use: a project of an earlier build has none. Errors of the database are thrown; a project
/// that can't be written gives a StorageFailure.
class SearchResults {
  public:
    explicit SearchResults(SQLite::Database &database) : m_database(database) {}

    /// In the order of their making.
    std::vector<SearchResult> list() const;
    std::optional<SearchResult> find(std::string_view name) const;
    /// In the order of their adding.
    std::vector<ResultHit> hits(const SearchResult &result) const;
    /// The key is given by the database, and `hit` gives each of `count` hits. All of it or nothing
    /// is kept. Neither a result nor a query may have its name.
    void add(const SearchResult &result, std::size_t count,
             const std::function<ResultHit(std::size_t)> &hit);
    /// The result, its hits and its query, where that is still the result's own.
    void remove(const SearchResult &result);

  private:
    std::int64_t addResult(const SearchResult &result);

    SQLite::Database &m_database;
};

/// The text of the stored query of a result.
std::string queryOfResult(std::int64_t resultID);

} // namespace nv
