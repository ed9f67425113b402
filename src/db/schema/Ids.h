#pragma once

#include <cstdint>

namespace nv {

// Row keys. 0 is the key of no row: the database counts from 1. Keys of two tables can't be taken
// for each other; they are compared, bound (db/sql/BindId.h) and printed as they are.
enum class UrlId : std::int64_t { none = 0 };
enum class SourceFileId : std::int64_t { none = 0 };

/// For what knows no keys: cells of a table, lists that hold many.
constexpr std::int64_t number(UrlId id) {
    return static_cast<std::int64_t>(id);
}
constexpr std::int64_t number(SourceFileId id) {
    return static_cast<std::int64_t>(id);
}

/// How fmt prints them.
constexpr std::int64_t format_as(UrlId id) {
    return number(id);
}
constexpr std::int64_t format_as(SourceFileId id) {
    return number(id);
}

} // namespace nv
