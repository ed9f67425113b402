#pragma once

#include "db/hashes/HashSetForm.h"
#include "db/schema/Ids.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace nv {

// What a project keeps of hash sets: that files of its rows are in them (db/hashes/HashLookup.h). The sets
// themselves may be gone.

/// A set in which files of a project were found.
struct FoundHashSet {
    HashMeaning meaning = HashMeaning::known;
    std::string name;
    std::uint64_t rows = 0;
};
/// Notable ones first, by name. None in a project of an earlier build. Throws what the database
/// says.
std::vector<FoundHashSet> foundHashSets(SQLite::Database &project);
/// How many rows are in any set of this meaning. Throws what the database says.
std::uint64_t countInHashSets(SQLite::Database &project, HashMeaning meaning);

/// The rows of one of these, ascending. Throws what the database says.
std::vector<std::int32_t> rowsOf(SQLite::Database &project, const FoundHashSet &set);

/// "notable: cases; known: library, system"; empty for none. `sets` are in the order of
/// foundHashSets().
std::string hashSetsText(const std::vector<FoundHashSet> &sets);

/// The condition on rows of table RecordFacts that tell of a set, and that have an id which lists
/// can hold: other programs may have written them.
std::string hashSetFacts();
/// The ids of the rows that are in a set of the meaning, as a SELECT without parameters.
std::string rowsInHashSets(HashMeaning meaning);
/// Whether the project has a place for what is found.
bool hasFacts(SQLite::Database &project);

/// Reads the sets of one row after another; must be gone before the connection is closed.
class RowHashSetReader {
  public:
    explicit RowHashSetReader(SQLite::Database &project);
    ~RowHashSetReader();
    RowHashSetReader(const RowHashSetReader &) = delete;
    RowHashSetReader &operator=(const RowHashSetReader &) = delete;

    /// As hashSetsText() says it.
    std::string of(UrlId id);

  private:
    std::unique_ptr<SQLite::Statement> m_rows; ///< null in a project without facts
};

} // namespace nv
