#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace nv {

namespace {

/// Windows-1252 characters of the bytes 0x80 to 0x9F; the open ones map to themselves.
constexpr std::array<char32_t, 32> kAnsiHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t kBadCode = 0xFFFFFFFF;

void appendUtf8(std::string &out, char32_t c) {
    const auto put = [&out](std::uint32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

/// Number of continuation bytes that a lead byte calls for, or -1 for no lead byte.
int continuationBytes(std::uint8_t lead) {
    if (lead < 0x80)
        return 0;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 1;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 2;
    return lead >= 0xF0 && lead <= 0xF4 ? 3 : -1;
}

/// Reads one code point at `at` and moves after it; kBadCode, one byte on, when it is no UTF-8.
char32_t nextCode(std::string_view text, std::size_t &at) {
    const auto lead = static_cast<std::uint8_t>(text[at++]);
    const int more = continuationBytes(lead);
    if (more <= 0)
        return more == 0 ? lead : kBadCode;
    if (text.size() - at < static_cast<std::size_t>(more))
        return kBadCode;
    char32_t code = lead & (0x3Fu >> more);
    for (int i = 0; i < more; ++i) {
        const auto byte = static_cast<std::uint8_t>(text[at + static_cast<std::size_t>(i)]);
        if ((byte & 0xC0) != 0x80)
            return kBadCode;
        code = code << 6 | (byte & 0x3F);
    }
    const bool overlong = (more == 2 && code < 0x800) || (more == 3 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (overlong || surrogate || code > 0x10FFFF)
        return kBadCode;
    at += static_cast<std::size_t>(more);
    return code;
}

char ansiByteOf(char32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code <= 0xFF))
        return static_cast<char>(code);
    const auto found = std::find(kAnsiHigh.begin(), kAnsiHigh.end(), code);
    return found == kAnsiHigh.end() ? '?' : static_cast<char>(0x80 + (found - kAnsiHigh.begin()));
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// The byte that "%XX" at `at` codes, or -1 when there is no such escape or its byte is a control.
int escapedByte(std::string_view text, std::size_t at) {
    if (text.size() - at < 3 || text[at] != '%')
        return -1;
    const int high = hexDigit(text[at + 1]);
    const int low = hexDigit(text[at + 2]);
    const int value = high * 16 + low;
    return high < 0 || low < 0 || value < 0x20 || value == 0x7F ? -1 : value;
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

} // namespace

std::string fromAnsi(std::string_view bytes) {
    if (isAscii(bytes))
        return std::string(bytes);
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        appendUtf8(out, byte >= 0x80 && byte < 0xA0 ? kAnsiHigh[byte - 0x80] : byte);
    }
    return out;
}

std::string fromAnsi(ByteView bytes) {
    return fromAnsi(bytes.raw());
}

std::string toAnsi(std::string_view text) {
    if (isAscii(text))
        return std::string(text);
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        out.push_back(ansiByteOf(nextCode(text, at)));
    return out;
}

bool isUtf8(std::string_view bytes) {
    if (isAscii(bytes))
        return true;
    for (std::size_t at = 0; at < bytes.size();)
        if (nextCode(bytes, at) == kBadCode)
            return false;
    return true;
}

std::string decodeText(std::string_view bytes) {
    return isUtf8(bytes) ? std::string(bytes) : fromAnsi(bytes);
}

std::string percentDecode(std::string_view text) {
    if (text.find('%') == std::string_view::npos)
        return std::string(text);
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        std::string run;
        for (int byte = 0; at < text.size() && (byte = escapedByte(text, at)) >= 0; at += 3)
            run.push_back(static_cast<char>(byte));
        out += decodeText(run);
        if (run.empty())
            out.push_back(text[at++]);
    }
    return out;
}

std::size_t charCount(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string_view charSub(std::string_view text, std::size_t first, std::size_t count) {
    const auto byteOf = [&text](std::size_t from, std::size_t chars) {
        std::size_t at = from;
        for (std::size_t seen = 0; at < text.size(); ++at)
            if ((text[at] & 0xC0) != 0x80 && seen++ == chars)
                break;
        return at;
    };
    const std::size_t begin = byteOf(0, first);
    return text.substr(begin, byteOf(begin, count) - begin);
}

} // namespace nv
