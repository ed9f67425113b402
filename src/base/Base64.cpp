#include "base/Base64.h"

#include <array>
#include <cstdint>

namespace nv {

namespace {

constexpr std::string_view kLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t kNoLetter = 64;
using LetterValues = std::array<std::uint8_t, 256>;

constexpr LetterValues valuesOf(Base64Letters letters) {
    LetterValues values{};
    values.fill(kNoLetter);
    for (std::size_t at = 0; at < kLetters.size(); ++at)
        values.at(static_cast<unsigned char>(kLetters[at])) = static_cast<std::uint8_t>(at);
    if (letters == Base64Letters::ofEither) {
        values.at('-') = values.at('+');
        values.at('_') = values.at('/');
    }
    return values;
}

constexpr LetterValues kOfCode = valuesOf(Base64Letters::ofCode);
constexpr LetterValues kOfEither = valuesOf(Base64Letters::ofEither);

} // namespace

std::string base64(ByteView bytes) {
    const std::string_view raw = bytes.raw();
    const auto at = [raw](std::size_t i) -> unsigned {
        return i < raw.size() ? static_cast<unsigned char>(raw[i]) : 0U;
    };
    std::string text;
    text.reserve((raw.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < raw.size(); i += 3) {
        const unsigned group = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
        for (const unsigned shift : {18U, 12U, 6U, 0U})
            text += kLetters[group >> shift & 63U];
    }
    // What stands for bytes beyond the end gives way to the filling.
    const std::size_t missing = (3 - raw.size() % 3) % 3;
    text.replace(text.size() - missing, missing, missing, '=');
    return text;
}

std::string fromBase64(std::string_view text, Base64Letters letters) {
    const LetterValues &values = letters == Base64Letters::ofCode ? kOfCode : kOfEither;
    std::string bytes;
    unsigned held = 0;
    unsigned bits = 0;
    for (const char c : text.substr(0, text.find('='))) {
        const unsigned value = values.at(static_cast<unsigned char>(c));
        if (value == kNoLetter)
            continue;
        held = (held << 6 | value) & 0xFFFFU;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes += static_cast<char>(held >> bits & 0xFFU);
        }
    }
    return bytes;
}

} // namespace nv
