#pragma once

#include "db/records/FactList.h"
#include "db/schema/Ids.h"

#include <SQLiteCpp/Statement.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

inline constexpr const char *kRecordFactsTable = "RecordFacts";

/// Rows of table `RecordFacts`. Its statements are made when they are first needed and kept, so it
/// must be gone before the connection is closed. All throw the database's errors.
class RecordFacts {
  public:
    explicit RecordFacts(SQLite::Database &database) : m_database(database) {}

    /// Adds the facts to those that the record has.
    void store(UrlId record, const FactList &facts);
    /// In the order of their adding; none in a project of an earlier build.
    FactList of(UrlId record);

  private:
    /// Rows that one statement adds: it takes half the time that one a row takes.
    static constexpr std::size_t kRowsTogether = 16;

    bool isThere();
    SQLite::Statement &insertOf(std::size_t rows);

    SQLite::Database &m_database;
    std::optional<bool> m_isThere;
    std::array<std::optional<SQLite::Statement>, kRowsTogether> m_inserts; ///< by rows, from 1
    std::optional<SQLite::Statement> m_select;
};

/// A fact's value as one text, nothing for nothing.
std::string factText(const FactValue &value);
/// The value, and after it the raw form in brackets where it has one: "typed [33554433]".
std::string factText(const RecordFact &fact);

} // namespace nv
