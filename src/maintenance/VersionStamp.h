#pragma once

#include "base/FailureLog.h"

#include <cstdint>

namespace SQLite {
class Database;
}

namespace nv {

/// A version of the program.
struct AppBuild {
    std::int64_t AppMajor = 0;
    std::int64_t AppMinor = 0;
    std::int64_t AppRevision = 0;

    friend auto operator<=>(const AppBuild &, const AppBuild &) = default;
};

/// The build that made or last upgraded the project; zeros for what it doesn't say.
AppBuild stampOf(SQLite::Database &project, FailureLog &log);
/// False when the project can't be written; the log tells.
bool stampVersion(SQLite::Database &project, FailureLog &log, const AppBuild &build);

} // namespace nv
