#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

/// Seven bits a byte, the lowest first; moves `at` behind it. Nothing where the bytes end before.
inline std::optional<std::uint64_t> levelVarint(ByteView bytes, std::uint64_t &at) {
    constexpr unsigned kMostBits = 64;
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < kMostBits && bytes.has(at, 1); shift += 7) {
        const std::uint8_t byte = bytes.u8(at++);
        number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80U)
            return number;
    }
    return std::nullopt;
}

/// Bytes behind their number; the same.
inline std::optional<std::string_view> levelText(ByteView bytes, std::uint64_t &at) {
    const auto size = levelVarint(bytes, at);
    if (!size || !bytes.has(at, *size))
        return std::nullopt;
    const std::string_view text = bytes.sub(at, *size).raw();
    at += *size;
    return text;
}

} // namespace nv
