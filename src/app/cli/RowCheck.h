#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv::cli {

/// Throws UsageError for the first id that is no row of the project.
void checkRows(SQLite::Database &project, std::span<const std::int64_t> ids);
/// The same; the ids in the order in which they were named, each once.
std::vector<std::int64_t> checkedRows(SQLite::Database &project, std::span<const std::int64_t> ids);
void checkRow(SQLite::Database &project, std::int64_t id);

} // namespace nv::cli
