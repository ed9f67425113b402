#include "base/Base32.h"

#include <cstdint>

namespace nv {

std::string base32(std::string_view bytes) {
    constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";
    constexpr std::size_t kGroup = 8; // letters
    constexpr unsigned kBits = 5;     // of a letter
    std::string text;
    text.reserve((bytes.size() + 4) / 5 * kGroup);
    std::uint32_t held = 0;
    unsigned bits = 0;
    for (const char each : bytes) {
        held = (held << 8U) | static_cast<unsigned char>(each);
        for (bits += 8; bits >= kBits; bits -= kBits)
            text += kLetters[held >> (bits - kBits) & 31U];
        held &= 31U; // what is left are fewer bits than a letter's
    }
    if (bits > 0)
        text += kLetters[held << (kBits - bits) & 31U];
    text.resize((text.size() + kGroup - 1) / kGroup * kGroup, '=');
    return text;
}

} // namespace nv
