#include "programs/jet/JetText.h"

#include <cstdint>

namespace nv::jet {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHigh(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLow(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void append(std::string &text, char32_t point) {
    const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (point < 0x80) {
        add(point);
    } else if (point < 0x800) {
        add(0xC0 | point >> 6);
        add(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        add(0xE0 | point >> 12);
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    } else {
        add(0xF0 | point >> 18);
        add(0x80 | (point >> 12 & 0x3F));
        add(0x80 | (point >> 6 & 0x3F));
        add(0x80 | (point & 0x3F));
    }
}

/// The units of the text as they are stored, unpacked.
std::u32string unitsOf(ByteView stored) {
    const bool packed = stored.has(0, 2) && stored.u16le(0) == 0xFEFF;
    std::u32string units;
    bool oneByte = packed;
    for (std::uint64_t at = packed ? 2 : 0; stored.has(at, 1);) {
        if (packed && stored.u8(at) == 0) {
            oneByte = !oneByte;
            ++at;
        } else if (oneByte) {
            units.push_back(stored.u8(at++));
        } else if (stored.has(at, 2)) {
            units.push_back(stored.u16le(at));
            at += 2;
        } else {
            units.push_back(kReplacement);
            ++at;
        }
    }
    return units;
}

} // namespace

std::string fromUnicode(ByteView stored) {
    const std::u32string units = unitsOf(stored);
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (isHigh(units[i]) && i + 1 < units.size() && isLow(units[i + 1])) {
            append(text, 0x10000 + ((units[i] - 0xD800) << 10) + (units[i + 1] - 0xDC00));
            ++i;
        } else {
            append(text, isHigh(units[i]) || isLow(units[i]) ? kReplacement : units[i]);
        }
    }
    return text;
}

} // namespace nv::jet
