#pragma once

#include "base/Digest.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace nv {

/// In the order of their lengths, which is that of how much they prove.
inline constexpr std::array kHashAlgorithms = {DigestAlgorithm::md5, DigestAlgorithm::sha1,
                                               DigestAlgorithm::sha256};
inline constexpr std::size_t kLongestHash = 32; ///< bytes

constexpr std::size_t placeOf(DigestAlgorithm algorithm) {
    return static_cast<std::size_t>(algorithm);
}
/// Bytes of such a hash.
constexpr std::size_t widthOf(DigestAlgorithm algorithm) {
    constexpr std::array<std::size_t, 3> kWidths = {16, 20, kLongestHash};
    return kWidths.at(placeOf(algorithm));
}
/// "MD5", "SHA-1", "SHA-256".
constexpr std::string_view wordOf(DigestAlgorithm algorithm) {
    constexpr std::array<std::string_view, 3> kWords = {"MD5", "SHA-1", "SHA-256"};
    return kWords.at(placeOf(algorithm));
}

/// A hash as bytes; which one it is, is told by its length.
struct HashValue {
    DigestAlgorithm algorithm = DigestAlgorithm::md5;
    std::array<std::uint8_t, kLongestHash> bytes{}; ///< the first widthOf(algorithm) count

    std::span<const std::uint8_t> used() const {
        return std::span(bytes).first(widthOf(algorithm));
    }
    friend bool operator==(const HashValue &, const HashValue &) = default;
};

/// Nothing for what isn't 32, 40 or 64 hexadecimal digits of either case.
std::optional<HashValue> hashIn(std::string_view hex);

} // namespace nv
