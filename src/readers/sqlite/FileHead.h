#pragma once

#include "readers/BigEndian.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

// What an SQLite file begins with: "SQLite format 3\0" page size:u16@10. Numbers are big-endian.

inline bool beginsAsSqlite(ByteView head) {
    using namespace std::string_view_literals;
    return head.raw().starts_with("SQLite format 3\0"sv);
}

/// Nothing for what is no SQLite file.
inline std::optional<std::uint64_t> sqlitePageSize(ByteView head) {
    constexpr std::uint64_t kPageSizeAt = 0x10;
    constexpr std::uint64_t kLargestPage = 65536;
    if (!beginsAsSqlite(head) || !head.has(kPageSizeAt, 2))
        return std::nullopt;
    const std::uint64_t stored = bigEndian(head.sub(kPageSizeAt, 2));
    return stored == 1 ? kLargestPage : stored; // 65536 has no room of its own
}

} // namespace nv
