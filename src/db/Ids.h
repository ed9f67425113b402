#pragma once

#include <cstdint>

namespace nv {

// Row keys. 0 is the key of no row: the database counts from 1.
enum class UrlId : std::int64_t { none = 0 };
enum class SourceFileId : std::int64_t { none = 0 };

constexpr std::int64_t number(UrlId id) {
    return static_cast<std::int64_t>(id);
}
constexpr std::int64_t number(SourceFileId id) {
    return static_cast<std::int64_t>(id);
}

} // namespace nv
