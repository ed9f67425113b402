#pragma once

#include "base/Clock.h"
#include "db/sql/KeywordLists.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

struct StoredQuery {
    std::string name; ///< a leading "_" marks a system query
    std::string sql;  ///< as written, in the project's dialect
};

/// The stored queries of a project. Each has its text as the examiner wrote it in table
/// `StoredQueries` and a real view of its name with the translation, so that any SQLite program can
/// read it. Errors of the database and of the dialect are thrown and leave everything as it was; a
/// project that can't be written gives a StorageFailure.
/// The view is what runs. Where somebody has changed it behind the text's back, list() and text()
/// give its own statement: no window shows one query and runs another.
class StoredQueries {
  public:
    explicit StoredQueries(SQLite::Database &database) : m_database(database) {}

    /// All queries of a new project. The dates of the activity queries are fixed on this day, so
    /// these queries age with the file.
    void createAll(const Clock &clock, const KeywordLists &keywords);
    /// In the order of their making.
    std::vector<StoredQuery> list() const;
    std::optional<std::string> text(std::string_view name) const;
    /// Adds the query or replaces its text.
    void save(const StoredQuery &query);
    void remove(std::string_view name);
    /// "_DEFAULT" gets its first text, and is made when it isn't there.
    void resetDEFAULTQuery();

  private:
    /// `select` is as SQLite reads it.
    void replaceView(const std::string &name, const std::string &select);

    SQLite::Database &m_database;
};

/// Names with "~" are kept but never listed: older projects hold system objects under them.
inline bool isSystemObject(std::string_view name) {
    return name.find('~') != std::string_view::npos;
}

inline constexpr std::string_view kDefaultQueryName = "_DEFAULT";
inline constexpr std::string_view kDefaultQueryText =
    "SELECT * FROM URLs ORDER BY ActionDateLocal ASC";

/// The text of a keyword query of a project that was made without the list of its terms: it finds
/// nothing, whatever the evidence holds.
bool lacksTerms(std::string_view sql);

/// The texts of the queries of a new project that is made on the given day.
std::vector<StoredQuery> firstQueries(int year, int month, const KeywordLists &keywords);

} // namespace nv
