#include "markup/Utf8.h"

#include "base/Text.h"

#include <bit>

namespace nv {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

} // namespace

bool isScalar(std::uint32_t code) {
    return code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF);
}

std::string utf8Of(std::uint32_t code) {
    const auto further = [code](unsigned shift) {
        return static_cast<char>(0x80 | ((code >> shift) & 0x3F));
    };
    if (code < 0x80)
        return {static_cast<char>(code)};
    if (code < 0x800)
        return {static_cast<char>(0xC0 | (code >> 6)), further(0)};
    if (code < 0x10000)
        return {static_cast<char>(0xE0 | (code >> 12)), further(6), further(0)};
    return {static_cast<char>(0xF0 | (code >> 18)), further(12), further(6), further(0)};
}

std::uint32_t nextCode(std::string_view text, std::size_t &at) {
    const auto first = static_cast<unsigned char>(text[at]);
    const auto ones = static_cast<std::size_t>(std::countl_one(first));
    const std::size_t length = ones == 0 ? 1 : ones;
    if (first < 0x80) {
        ++at;
        return first;
    }
    const std::string_view character = text.substr(at, length);
    if (ones < 2 || character.size() < length || !isUtf8(character)) {
        ++at;
        return kReplacement;
    }
    std::uint32_t code = first & (0xFFU >> (length + 1));
    for (const char byte : character.substr(1))
        code = (code << 6) | (static_cast<unsigned char>(byte) & 0x3FU);
    at += length;
    return code;
}

} // namespace nv
