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
    std::int64_t appMajor = 0;
    std::int64_t appMinor = 0;
    std::int64_t appRevision = 0;

    friend bool operator==(const AppBuild &, const AppBuild &) = default;
    friend std::strong_ordering operator<=>(const AppBuild &a, const AppBuild &b) {
        return std::tie(a.appMajor, a.appMinor, a.appRevision) <=>
               std::tie(b.appMajor, b.appMinor, b.appRevision);
    }
};

/// The build that made or last upgraded the project; zeros for what it doesn't say.
AppBuild stampOf(SQLite::Database &project, FailureLog &log);
/// False when the project can't be written; the log tells.
[[nodiscard]] bool stampVersion(SQLite::Database &project, FailureLog &log, const AppBuild &build);

} // namespace nv
