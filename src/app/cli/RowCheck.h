#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {
class RebuildTools;
struct Program;
struct URLClass;
} // namespace nv

namespace nv::cli {

/// Throws UsageError for the first id that is no row of the project.
void checkRows(SQLite::Database &project, std::span<const std::int64_t> ids);
/// The same; the ids in the order in which they were named, each once.
std::vector<std::int64_t> checkedRows(SQLite::Database &project, std::span<const std::int64_t> ids);
void checkRow(SQLite::Database &project, std::int64_t id);

/// The page's rebuilt folder made anew. Throws when it can't be whole: UsageError where a switch of
/// the examiner's brings it, otherwise StorageFailure.
void unpackPage(URLClass &page, RebuildTools &tools, const Program &program);

} // namespace nv::cli
