#pragma once

#include "base/TaskMonitor.h"

#include <cstdint>
#include <optional>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// Appends the rows of `table` in `from` to that of `to`, field by field for the fields that both
/// have; the others get their defaults. Returns how many; nothing when it was stopped. Throws
/// the database's errors, and StorageFailure when not every row arrived.
std::optional<std::int64_t> moveTable(SQLite::Database &from, SQLite::Database &to,
                                      const std::string &table, TaskMonitor &task);

/// The numbers that `from` has given to rows, also to rows that are gone: they aren't given again.
void moveRowNumbers(SQLite::Database &from, SQLite::Database &to);

} // namespace nv
