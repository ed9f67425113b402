#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <optional>
#include <vector>

/// What the rows of an SQLite file are made of, for those that read its pages (PagedRows.h).
namespace nv::paged {

constexpr std::uint8_t kInnerTable = 0x05;
constexpr std::uint8_t kLeafTable = 0x0D;

inline std::uint64_t bigEndian(ByteView bytes) {
    std::uint64_t number = 0;
    for (std::uint64_t at = 0; at < bytes.size(); ++at)
        number = number << 8 | bytes.u8(at);
    return number;
}

/// Moves `at` past it; nothing when the bytes end before.
inline std::optional<std::uint64_t> varint(ByteView bytes, std::uint64_t &at) {
    std::uint64_t number = 0;
    for (int i = 0; i < 9; ++i) {
        if (!bytes.has(at, 1))
            return std::nullopt;
        const std::uint8_t byte = bytes.u8(at++);
        if (i == 8)
            return number << 8 | byte;
        number = number << 7 | (byte & 0x7FU);
        if (byte < 0x80U)
            return number;
    }
    return std::nullopt;
}

inline std::uint64_t lengthOf(std::uint64_t kind) {
    constexpr std::uint64_t kLengths[] = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0, 0, 0};
    return kind < 12 ? kLengths[kind] : (kind - 12) / 2;
}

inline std::int64_t numberOf(std::uint64_t kind, ByteView value) {
    constexpr std::uint64_t kFirstText = 12;
    if (kind == 9 || kind >= kFirstText)
        return kind == 9 ? 1 : 0;
    const std::uint64_t number = bigEndian(value);
    const auto bits = static_cast<unsigned>(64 - 8 * value.size());
    return value.empty() ? 0 : static_cast<std::int64_t>(number << bits) >> bits;
}

/// A value of a row: its kind, and where it begins and how long it is.
struct Value {
    std::uint64_t kind = 0;
    std::uint64_t at = 0;
    std::uint64_t size = 0;
};

/// As many as the row's head tells of; none when that isn't whole.
inline std::vector<Value> valuesOf(ByteView row) {
    std::uint64_t at = 0;
    const auto head = varint(row, at);
    if (!head || *head > row.size())
        return {};
    std::vector<Value> values;
    std::uint64_t place = *head;
    while (at < *head) {
        const auto kind = varint(row, at);
        if (!kind)
            return {};
        values.push_back({*kind, place, lengthOf(*kind)});
        place += values.back().size;
    }
    return values;
}

} // namespace nv::paged
