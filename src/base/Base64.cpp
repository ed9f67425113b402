#include "base/Base64.h"

namespace nv {

namespace {

constexpr std::string_view kLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

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

std::string fromBase64(std::string_view text) {
    std::string bytes;
    unsigned held = 0;
    unsigned bits = 0;
    for (const char c : text.substr(0, text.find('='))) {
        const std::size_t value = kLetters.find(c);
        if (value == std::string_view::npos)
            continue;
        held = (held << 6 | static_cast<unsigned>(value)) & 0xFFFFU;
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes += static_cast<char>(held >> bits & 0xFFU);
        }
    }
    return bytes;
}

} // namespace nv
