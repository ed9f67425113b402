#include "reports/case/CodedText.h"

#include "base/Base64.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace nv {

namespace {

constexpr std::size_t kShortest = 4; ///< letters of base64 or digits: three bytes or two

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isBase64Letter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' ||
           c == '/' || c == '-' || c == '_';
}

/// From the first digit on; an odd last one goes.
std::string fromHex(std::string_view digits) {
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
        std::uint8_t byte = 0;
        std::from_chars(digits.data() + at, digits.data() + at + 2, byte, 16);
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

/// The form for addresses has two other letters.
std::string fromAnyBase64(std::string_view run) {
    std::string text(run);
    std::ranges::replace(text, '-', '+');
    std::ranges::replace(text, '_', '/');
    return fromBase64(text);
}

template <class Is, class Take>
void eachRun(std::string_view text, const Is &is, const Take &take) {
    for (std::size_t at = 0; at < text.size();) {
        if (!is(text[at])) {
            ++at;
            continue;
        }
        const auto *const begin = text.begin() + static_cast<std::ptrdiff_t>(at);
        const auto size = static_cast<std::size_t>(std::find_if_not(begin, text.end(), is) - begin);
        if (size >= kShortest)
            take(text.substr(at, size));
        at += size;
    }
}

} // namespace

std::vector<std::string> codedBytes(std::string_view text) {
    std::vector<std::string> found;
    eachRun(text, isHexDigit, [&found](std::string_view run) {
        found.push_back(fromHex(run));
        found.push_back(fromHex(run.substr(1)));
    });
    eachRun(text, isBase64Letter, [&found](std::string_view run) {
        constexpr std::size_t kGroup = 4;
        for (std::size_t from = 0; from < std::min(kGroup, run.size()); ++from)
            found.push_back(fromAnyBase64(run.substr(from)));
    });
    return found;
}

} // namespace nv
