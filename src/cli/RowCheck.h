#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {
class RecordTools;
struct Program;
struct URLClass;
} // namespace nv

namespace nv::cli {

/// Runs `body`, which reads the row. Throws StorageFailure, which names row and file, when the
/// project is damaged where the row lies.
void namingDamage(const SQLite::Database &project, std::int64_t id,
                  const std::function<void()> &body);

/// Throws UsageError for the first id that is no row of the project, and as namingDamage() does.
void checkRows(SQLite::Database &project, std::span<const std::int64_t> ids);
/// The same; the ids in the order in which they were named, each once.
std::vector<std::int64_t> checkedRows(SQLite::Database &project, std::span<const std::int64_t> ids);
void checkRow(SQLite::Database &project, std::int64_t id);

/// The page's rebuilt folder made anew. Throws when it can't be whole: UsageError where a switch of
/// the examiner's brings it, otherwise StorageFailure.
void unpackPage(URLClass &page, RecordTools &tools, const Program &program);

} // namespace nv::cli
