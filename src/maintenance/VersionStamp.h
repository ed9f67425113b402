#pragma once

#include "base/FailureLog.h"

#include <compare>
#include <cstdint>
#include <tuple>

namespace SQLite {
class Database;
}

namespace nv {

/// A version of the program.
struct AppBuild {
    std::int64_t AppMajor = 0;
    std::int64_t AppMinor = 0;
    std::int64_t AppRevision = 0;

    friend bool operator==(const AppBuild &, const AppBuild &) = default;
    friend std::strong_ordering operator<=>(const AppBuild &a, const AppBuild &b) {
        return std::tie(a.AppMajor, a.AppMinor, a.AppRevision) <=>
               std::tie(b.AppMajor, b.AppMinor, b.AppRevision);
    }
};

/// The build that made or last upgraded the project; zeros for what it doesn't say.
AppBuild stampOf(SQLite::Database &project, FailureLog &log);
/// False when the project can't be written; the log tells.
bool stampVersion(SQLite::Database &project, FailureLog &log, const AppBuild &build);

} // namespace nv
