#include "db/hashes/HashValue.h"

namespace nv {

namespace {

constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> kDigits = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(kNoDigit);
    for (std::uint8_t value = 0; value < 10; ++value)
        digits.at(std::size_t{'0'} + value) = value;
    for (std::uint8_t value = 10; value < 16; ++value) {
        digits.at(std::size_t{'a'} + value - 10) = value;
        digits.at(std::size_t{'A'} + value - 10) = value;
    }
    return digits;
}();

std::uint8_t digitOf(char letter) {
    return kDigits.at(static_cast<std::uint8_t>(letter));
}

} // namespace

std::optional<HashValue> hashIn(std::string_view hex) {
    const auto *algorithm = std::ranges::find_if(
        kHashAlgorithms, [&](DigestAlgorithm each) { return widthOf(each) * 2 == hex.size(); });
    if (algorithm == kHashAlgorithms.end())
        return std::nullopt;
    HashValue hash{.algorithm = *algorithm};
    for (std::size_t at = 0; at < hex.size(); at += 2) {
        const std::uint8_t high = digitOf(hex[at]);
        const std::uint8_t low = digitOf(hex[at + 1]);
        if (high == kNoDigit || low == kNoDigit)
            return std::nullopt;
        hash.bytes.at(at / 2) = static_cast<std::uint8_t>(high << 4 | low);
    }
    return hash;
}

} // namespace nv
