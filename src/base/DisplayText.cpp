#include "base/DisplayText.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace nv {
namespace {

constexpr std::string_view kEllipsis = "\u2026";
constexpr std::string_view kNoCharacter = "\uFFFD";

/// Length of the well-formed UTF-8 character at the start of `text`; 0 when there is none.
std::size_t lengthOfFirst(std::string_view text) {
    const auto lead = static_cast<std::uint8_t>(text.front());
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    return length <= text.size() && isUtf8(text.substr(0, length)) ? length : 0;
}

/// `character` is well-formed.
std::uint32_t codePointOf(std::string_view character) {
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(character[at]); };
    if (character.size() == 1)
        return byte(0);
    std::uint32_t code = byte(0) & (0x7Fu >> character.size());
    for (std::size_t at = 1; at < character.size(); ++at)
        code = (code << 6) | (byte(at) & 0x3Fu);
    return code;
}

/// Marks of direction, characters without width (the soft hyphen has none within a line),
/// separators of lines and paragraphs.
bool deceives(std::uint32_t code) {
    return code == 0xAD || code == 0x034F || code == 0x061C || code == 0xFEFF ||
           (code >= 0x200B && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2060 && code <= 0x206F);
}

void appendShown(std::string &line, std::string_view character) {
    const std::uint32_t code = codePointOf(character);
    if (code < 0x20)
        // The block of control pictures begins at U+2400 (E2 90 80).
        line.append("\xE2\x90").push_back(static_cast<char>(0x80 + code));
    else if (code == 0x7F)
        line += "\u2421";
    else if ((code >= 0x80 && code < 0xA0) || deceives(code))
        line += fmt::format("<U+{:04X}>", code);
    else
        line += character;
}

/// The usual case costs no more than a look: short and printable.
bool isPlain(std::string_view text, std::size_t maxChars) {
    return text.size() <= maxChars &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
}

} // namespace

std::string displayText(std::string_view text, std::size_t maxChars) {
    if (isPlain(text, maxChars))
        return std::string(text);
    std::string line;
    for (std::size_t shown = 0; !text.empty(); ++shown) {
        if (shown == maxChars)
            return line.append(kEllipsis);
        const std::size_t length = lengthOfFirst(text);
        if (length == 0)
            line += kNoCharacter;
        else
            appendShown(line, text.substr(0, length));
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return line;
}

} // namespace nv
