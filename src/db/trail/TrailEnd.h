#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// Where the case trail ended when the program last wrote to it, kept apart from it among the
/// project's settings: who cuts entries off, or empties the trail, leaves this behind.
struct TrailEnd {
    std::int64_t entries = 0;
    std::int64_t unchained = 0; ///< of them, the first ones, which earlier versions wrote
    std::string hash;           ///< of the last one

    friend bool operator==(const TrailEnd &, const TrailEnd &) = default;
};

/// Nothing in projects of earlier versions. Throws the database's errors, as the next one does.
std::optional<TrailEnd> keptTrailEnd(SQLite::Database &project);
void keepTrailEnd(SQLite::Database &project, const TrailEnd &end);

} // namespace nv
