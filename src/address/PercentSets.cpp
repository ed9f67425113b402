#include "address/PercentSets.h"

#include <array>
#include <cstddef>

namespace nv {

namespace {

using Flags = std::uint8_t;

constexpr Flags flagOf(PercentSet set) {
    return static_cast<Flags>(1U << static_cast<unsigned>(set));
}

/// For each byte, in which sets it is.
class Sets {
  public:
    constexpr Sets() {
        for (std::size_t byte = 0; byte < m_flags.size(); ++byte)
            m_flags.at(byte) = byte < 0x20 || byte > 0x7E ? 0xFF : 0;
        add(PercentSet::fragment, " \"<>`");
        add(PercentSet::query, " \"#<>");
        add(PercentSet::specialQuery, " \"#<>'");
        add(PercentSet::path, " \"#<>?^`{}");
        add(PercentSet::userinfo, " \"#<>?^`{}/:;=@[\\]|");
    }
    constexpr bool has(PercentSet set, char byte) const {
        return (m_flags[static_cast<unsigned char>(byte)] & flagOf(set)) != 0;
    }

  private:
    constexpr void add(PercentSet set, std::string_view bytes) {
        for (const char byte : bytes)
            m_flags.at(static_cast<unsigned char>(byte)) |= flagOf(set);
    }

    std::array<Flags, 256> m_flags{};
};

constexpr Sets kSets;
constexpr std::string_view kDigits = "0123456789ABCDEF";

} // namespace

void appendEscape(std::string &out, char byte) {
    const auto value = static_cast<unsigned char>(byte);
    out += '%';
    out += kDigits[value >> 4U];
    out += kDigits[value & 0xFU];
}

void appendEncoded(std::string &out, std::string_view bytes, PercentSet set) {
    for (const char byte : bytes) {
        if (kSets.has(set, byte))
            appendEscape(out, byte);
        else
            out += byte;
    }
}

std::string percentEncoded(std::string_view bytes, PercentSet set) {
    std::string out;
    out.reserve(bytes.size());
    appendEncoded(out, bytes, set);
    return out;
}

int hexDigitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string bytesOfEscapes(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isWhole = text[at] == '%' && text.size() - at > 2;
        const int high = isWhole ? hexDigitOf(text[at + 1]) : -1;
        const int low = isWhole ? hexDigitOf(text[at + 2]) : -1;
        if (high < 0 || low < 0) {
            out += text[at];
            continue;
        }
        out += static_cast<char>(high * 16 + low);
        at += 2;
    }
    return out;
}

} // namespace nv
