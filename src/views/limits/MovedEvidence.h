#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SQLite {
class Database;
}

namespace nv {

/// Gives the rows the project's base folder when theirs is another, so that evidence which was
/// moved is found again; paths of the row that begin with the old base folder follow. Rows with "/"
/// lie outside of any base folder and stay, and so do all rows when `RootPath` is empty or "/"
/// itself: they couldn't be told from those afterwards. `SourceFiles` keeps the paths of the
/// import. The number of rows that were changed; nothing, and none changed, when the task was
/// cancelled. Rows that an earlier call has seen with the same folder aren't read again. Throws
/// what the database says.
std::optional<std::int64_t> mendRootPath(SQLite::Database &database, FailureLog &log,
                                         std::string_view rootPath, TaskMonitor &task);

/// With a separator at its end, as rows hold it.
std::string asRootPath(std::string_view folder);

} // namespace nv
