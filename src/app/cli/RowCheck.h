#pragma once

#include <cstdint>
#include <span>

namespace SQLite {
class Database;
}

namespace nv::cli {

/// Throws UsageError for the first id that is no row of the project.
void checkRows(SQLite::Database &project, std::span<const std::int64_t> ids);
void checkRow(SQLite::Database &project, std::int64_t id);

} // namespace nv::cli
