#pragma once

#include "base/TaskMonitor.h"
#include "db/hashes/HashSetFile.h"

#include <cstdint>
#include <span>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// What earlier matches have found of other sets.
enum class EarlierFindings { keep, drop };

/// What came of a match.
struct HashMatch {
    std::vector<std::uint64_t> rows; ///< found, by the place of the set
    std::uint64_t rowsOfProject = 0;
    std::uint64_t rowsWithHash = 0;      ///< that could be asked for
    std::uint64_t rowsFound = 0;         ///< in one set or more
    std::uint64_t bodiesWithoutHash = 0; ///< rows with cached content of which no hash is known
    std::uint64_t withoutContent = 0;    ///< the rest: there is nothing to hash
    bool cancelled = false;              ///< the project stays as it was
};

/// Looks for the hashes of the project's files in the sets and stores what was found as facts
/// (db/hashes/HashLookup.h), in place of what an earlier match with these sets has found. All or nothing
/// is stored. Throws StorageFailure when the project can't be read or written, and as
/// HashSetFile::has() does.
HashMatch matchHashSets(SQLite::Database &project, std::span<HashSetFile> sets,
                        EarlierFindings earlier, TaskMonitor &task);

} // namespace nv
