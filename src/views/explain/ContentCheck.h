#pragma once

#include "db/records/UrlRecord.h"
#include "readers/CachedBody.h"

#include <filesystem>
#include <set>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// The SHA-256 of a record's content, unpacked, as the import has read it; empty where it has
/// hashed none.
std::string contentHashThen(SQLite::Database &project, UrlId id);

/// What the content of a record is today. Hashes are SHA-256, of the content unpacked.
struct ContentCheck {
    std::string then;                      ///< empty: it wasn't hashed at the import
    std::string now;                       ///< empty: the evidence doesn't give it any more
    std::set<std::filesystem::path> files; ///< of the evidence, that it was read from

    bool differs() const { return !then.empty() && !now.empty() && then != now; }
};

/// Reads the content again, by way of the scratch folder. What can't be read is logged.
ContentCheck checkContent(SQLite::Database &project, UrlRecord record,
                          const std::filesystem::path &scratch, FailureLog &log);

} // namespace nv
