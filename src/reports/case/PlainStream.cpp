#include "reports/case/PlainStream.h"

#include "base/Text.h"
#include "markup/Utf8.h"
#include "search/FoldedText.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <optional>

namespace nv {

namespace {

struct Code {
    std::uint32_t value = 0;
    std::size_t length = 0; ///< bytes it is written with
    bool isByte = false;    ///< of UTF-8, and not a character
};

int digitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char low = static_cast<char>(c | 0x20);
    return low >= 'a' && low <= 'f' ? low - 'a' + 10 : -1;
}

/// Digits from `at` on, at most so many.
std::optional<Code> numberAt(std::string_view text, std::size_t at, std::uint32_t base,
                             std::size_t most) {
    Code code;
    while (code.length < most && at + code.length < text.size()) {
        const int digit = digitOf(text[at + code.length]);
        if (digit < 0 || static_cast<std::uint32_t>(digit) >= base)
            break;
        code.value = code.value * base + static_cast<std::uint32_t>(digit);
        ++code.length;
    }
    return code.length > 0 ? std::optional(code) : std::nullopt;
}

using CodeAt = std::optional<Code> (*)(std::string_view text, std::size_t at);

/// `first` as it stands, or with the second half of a character that two codes of UTF-16 write.
Code withLowHalf(const Code &first, std::string_view text, std::size_t at, CodeAt read) {
    constexpr std::uint32_t kHigh = 0xD800;
    constexpr std::uint32_t kLow = 0xDC00;
    constexpr std::uint32_t kLetters = 0x400; // of each half
    const std::size_t next = at + first.length;
    if (first.value < kHigh || first.value >= kLow || next >= text.size() || text[next] != text[at])
        return first;
    const auto low = read(text, next);
    if (!low || low->value < kLow || low->value >= kLow + kLetters)
        return first;
    return {0x10000 + (first.value - kHigh) * kLetters + (low->value - kLow),
            first.length + low->length, false};
}

/// "%u0071" of scripts.
std::optional<Code> percentUnitAt(std::string_view text, std::size_t at) {
    constexpr std::size_t kDigits = 4;
    if (at + 1 >= text.size() || (text[at + 1] | 0x20) != 'u')
        return std::nullopt;
    const auto code = numberAt(text, at + 2, 16, kDigits);
    return code && code->length == kDigits ? std::optional(Code{code->value, kDigits + 2, false})
                                           : std::nullopt;
}

std::optional<Code> percentAt(std::string_view text, std::size_t at) {
    if (const auto unit = percentUnitAt(text, at))
        return withLowHalf(*unit, text, at, percentUnitAt);
    auto code = numberAt(text, at + 1, 16, 2);
    if (!code || code->length != 2)
        return std::nullopt;
    return Code{code->value, 3, true};
}

std::optional<Code> referenceAt(std::string_view text, std::size_t at) {
    struct Named {
        std::string_view name;
        std::uint32_t value;
    };
    static constexpr std::array<Named, 12> kNamed = {{{"&amp;", '&'},
                                                      {"&lt;", '<'},
                                                      {"&gt;", '>'},
                                                      {"&quot;", '"'},
                                                      {"&apos;", '\''},
                                                      {"&nbsp;", 0xA0},
                                                      {"&period;", '.'},
                                                      {"&commat;", '@'},
                                                      {"&sol;", '/'},
                                                      {"&lowbar;", '_'},
                                                      {"&colon;", ':'},
                                                      {"&shy;", 0xAD}}};
    for (const Named &each : kNamed)
        if (text.substr(at).starts_with(each.name))
            return Code{each.value, each.name.size(), false};
    if (at + 2 >= text.size() || text[at + 1] != '#')
        return std::nullopt;
    const bool isHex = (text[at + 2] | 0x20) == 'x';
    const std::size_t digits = at + (isHex ? 3 : 2);
    auto code = numberAt(text, digits, isHex ? 16 : 10, 7);
    if (!code)
        return std::nullopt;
    std::size_t end = digits + code->length;
    end += end < text.size() && text[end] == ';' ? 1 : 0;
    return Code{code->value, end - at, false};
}

/// "\u0061".
std::optional<Code> unitAt(std::string_view text, std::size_t at) {
    constexpr std::size_t kDigits = 4;
    if (at + 1 >= text.size() || text[at + 1] != 'u')
        return std::nullopt;
    const auto code = numberAt(text, at + 2, 16, kDigits);
    return code && code->length == kDigits ? std::optional(Code{code->value, kDigits + 2, false})
                                           : std::nullopt;
}

/// "\u{61}".
std::optional<Code> bracedAt(std::string_view text, std::size_t at) {
    constexpr std::size_t kMostDigits = 8;
    if (!text.substr(at).starts_with("\\u{"))
        return std::nullopt;
    const auto code = numberAt(text, at + 3, 16, kMostDigits);
    if (!code)
        return std::nullopt;
    const std::size_t end = at + 3 + code->length;
    return end < text.size() && text[end] == '}'
               ? std::optional(Code{code->value, end + 1 - at, false})
               : std::nullopt;
}

/// "\x61".
std::optional<Code> byteAt(std::string_view text, std::size_t at) {
    const auto code = numberAt(text, at + 2, 16, 2);
    return code && code->length == 2 ? std::optional(Code{code->value, 4, false}) : std::nullopt;
}

/// "\141".
std::optional<Code> octalAt(std::string_view text, std::size_t at) {
    constexpr std::uint32_t kLargest = 0xFF;
    auto code = numberAt(text, at + 1, 8, 3);
    if (code && code->value > kLargest)
        code = numberAt(text, at + 1, 8, 2);
    return code ? std::optional(Code{code->value, code->length + 1, false}) : std::nullopt;
}

/// What stands for itself behind a backslash, and what stands for a blank there.
std::optional<Code> signAt(std::string_view text, std::size_t at) {
    switch (const char sign = text[at + 1]; sign) {
    case '/':
    case '\'':
    case '"':
        return Code{static_cast<std::uint32_t>(sign), 2, false};
    case 'n':
    case 'r':
        return Code{'\n', 2, false};
    case 't':
        return Code{'\t', 2, false};
    default:
        return std::nullopt;
    }
}

/// Those of scripts, and "\61 " of a style.
std::optional<Code> escapeAt(std::string_view text, std::size_t at) {
    if (at + 1 >= text.size())
        return std::nullopt;
    if (const auto unit = unitAt(text, at))
        return withLowHalf(*unit, text, at, unitAt);
    if (const auto braced = bracedAt(text, at))
        return braced;
    if (text[at + 1] == 'x')
        return byteAt(text, at);
    if (const auto sign = signAt(text, at))
        return sign;
    const auto code = numberAt(text, at + 1, 16, 6);
    // A path of Windows has such letters too, so that texts are looked through as they stand as
    // well.
    if (!code || code->length < 2 || code->value < 0x20)
        return std::nullopt;
    std::size_t end = at + 1 + code->length;
    end += end < text.size() && text[end] == ' ' ? 1 : 0;
    return Code{code->value, end - at, false};
}

std::optional<Code> codeAt(std::string_view text, std::size_t at,
                           PlainStream::Codes codes = PlainStream::Codes::undo) {
    if (codes == PlainStream::Codes::undoOctal && text[at] == '\\')
        if (const auto octal = octalAt(text, at))
            return octal;
    switch (text[at]) {
    case '%':
        return percentAt(text, at);
    case '&':
        return referenceAt(text, at);
    case '\\':
        return escapeAt(text, at);
    default:
        return std::nullopt;
    }
}

/// Has no width: a word goes on through it.
bool isInvisible(std::uint32_t code) {
    return code >= 0x80 &&
           u_hasBinaryProperty(static_cast<UChar32>(code), UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
}

/// Runs of these stand for one blank, as in a page.
bool isBlank(std::uint32_t code) {
    return code == ' ' || (code >= 0x09 && code <= 0x0D) || code == 0xA0 || code == 0x3000 ||
           (code >= 0x2000 && code <= 0x200A) || code == 0x202F || code == 0x205F;
}

/// What a coding stands for.
std::string written(const Code &code) {
    if (code.isByte)
        return std::string(1, static_cast<char>(code.value));
    return isScalar(code.value) ? utf8Of(code.value) : std::string(1, '?');
}

/// A text without its codings.
struct Undone {
    std::string bytes;
    std::vector<std::uint32_t> from; ///< where each byte stands in the text; then the text's end
    bool hadCodes = false;
};

Undone undone(std::string_view text, PlainStream::Codes codes) {
    const bool undoes = codes != PlainStream::Codes::keep;
    Undone read;
    read.bytes.reserve(text.size());
    read.from.reserve(text.size() + 1);
    for (std::size_t at = 0; at < text.size();) {
        const auto code = undoes ? codeAt(text, at, codes) : std::nullopt;
        // So forms write a blank.
        const bool isPlus = undoes && text[at] == '+';
        const std::string bytes = code ? written(*code) : std::string(1, isPlus ? ' ' : text[at]);
        read.hadCodes |= code.has_value();
        read.bytes += bytes;
        read.from.insert(read.from.end(), bytes.size(), static_cast<std::uint32_t>(at));
        at += code ? code->length : 1;
    }
    read.from.push_back(static_cast<std::uint32_t>(text.size()));
    return read;
}

} // namespace

PlainStream::PlainStream(std::string_view text, Codes codes) {
    // First the bytes without codings, then the characters of these.
    const Undone read = undone(text, codes);
    const std::string &bytes = read.bytes;
    hadCodes = read.hadCodes;
    FoldedText folded;
    plain.reserve(bytes.size());
    origin.reserve(bytes.size() + 1);
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t begin = at;
        const std::uint32_t letter = nextCode(bytes, at);
        if (isInvisible(letter))
            continue;
        if (isBlank(letter)) {
            if (plain.ends_with(' '))
                continue;
            plain += ' ';
        } else if (letter < 0x80) {
            plain += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20)
                                                    : static_cast<char>(letter);
        } else {
            folded.fold(std::string_view(bytes).substr(begin, at - begin));
            plain += folded.text();
        }
        origin.resize(plain.size(), read.from[begin]);
    }
    origin.push_back(static_cast<std::uint32_t>(text.size()));
}

bool mayHaveOctal(std::string_view text) {
    for (std::size_t at = text.find('\\'); at != std::string_view::npos;
         at = text.find('\\', at + 1))
        if (octalAt(text, at))
            return true;
    return false;
}

std::string withoutCodes(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const auto code = codeAt(text, at);
        if (code)
            plain += written(*code);
        else
            plain += text[at];
        at += code ? code->length : 1;
    }
    return plain;
}

std::string withoutMarkup(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t tag = text.find('<', at);
        plain += text.substr(at, tag == std::string_view::npos ? tag : tag - at);
        if (tag == std::string_view::npos)
            break;
        const std::size_t end = text.find('>', tag);
        at = end == std::string_view::npos ? text.size() : end + 1;
    }
    return plain;
}

} // namespace nv
