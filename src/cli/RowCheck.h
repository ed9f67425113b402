#pragma once

#include "db/schema/Ids.h"

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
struct UrlRecord;
} // namespace nv

namespace nv::cli {

/// Runs `body`, which reads the row. Throws StorageFailure, which names row and file, when the
/// project is damaged where the row lies.
void namingDamage(const SQLite::Database &project, UrlId id, const std::function<void()> &body);

/// The keys of rows from the numbers that the examiner gave. Throws UsageError for the first number
/// that is no row of the project, and as namingDamage() does.
std::vector<UrlId> checkedRows(SQLite::Database &project, std::span<const std::int64_t> numbers);
/// The same in the order in which they were named, each once.
std::vector<UrlId> differentRows(SQLite::Database &project, std::span<const std::int64_t> numbers);
UrlId checkedRow(SQLite::Database &project, std::int64_t number);

/// The page's rebuilt folder made anew. Throws when it can't be whole: UsageError where a switch of
/// the examiner's brings it, otherwise StorageFailure.
void unpackPage(UrlRecord &page, RecordTools &tools, const Program &program);

} // namespace nv::cli
