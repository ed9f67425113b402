#include "views/hex/HexFind.h"

#include "base/Text.h"
#include "views/hex/NeedleSearch.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <charconv>

namespace nv {

namespace {

constexpr std::uint64_t kBlock = std::uint64_t{4} << 20;

enum class Encoding { ansi, utf8, utf16, utf16BigEndian };

std::string encoded(UChar32 character, Encoding encoding) {
    const icu::UnicodeString text(character);
    std::string bytes;
    if (encoding == Encoding::ansi || encoding == Encoding::utf8) {
        text.toUTF8String(bytes);
        return encoding == Encoding::utf8 ? bytes : toAnsi(bytes);
    }
    for (int at = 0; at < text.length(); ++at) {
        const auto low = static_cast<char>(text[at] & 0xFF);
        const auto high = static_cast<char>(text[at] >> 8);
        bytes += encoding == Encoding::utf16 ? low : high;
        bytes += encoding == Encoding::utf16 ? high : low;
    }
    return bytes;
}

/// Nothing when the encoding has no such character.
std::optional<std::string> formOf(UChar32 character, Encoding encoding) {
    std::string bytes = encoded(character, encoding);
    if (encoding == Encoding::ansi && bytes == "?" && character != U'?')
        return std::nullopt;
    return bytes;
}

HexNeedle::Unit unitOf(UChar32 character, Encoding encoding, LetterCase letters) {
    HexNeedle::Unit unit;
    const auto add = [&](UChar32 form) {
        const auto bytes = formOf(form, encoding);
        if (bytes && std::ranges::find(unit, *bytes) == unit.end())
            unit.push_back(*bytes);
    };
    add(character);
    if (letters == LetterCase::ignored) {
        add(u_tolower(character));
        add(u_toupper(character));
        // The Turkish letters count as "i", as in searches.
        if (u_toupper(u_tolower(character)) == U'I') {
            add(UChar32{0x130});
            add(UChar32{0x131});
        }
    }
    return unit;
}

icu::UnicodeString charactersOf(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::optional<HexNeedle> needleIn(Encoding encoding, const icu::UnicodeString &text,
                                  LetterCase letters) {
    HexNeedle needle;
    for (int at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        HexNeedle::Unit unit = unitOf(text.char32At(at), encoding, letters);
        if (unit.empty())
            return std::nullopt;
        needle.units.push_back(std::move(unit));
    }
    return needle.units.empty() ? std::nullopt : std::optional(needle);
}

std::optional<unsigned> digitOf(char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const std::size_t at = kDigits.find(toLower(std::string_view(&c, 1)));
    return at == std::string_view::npos ? std::nullopt : std::optional(static_cast<unsigned>(at));
}

} // namespace

std::vector<HexNeedle> needlesOfText(std::string_view text, LetterCase letters) {
    const icu::UnicodeString characters = charactersOf(text);
    std::vector<HexNeedle> needles;
    for (const Encoding encoding : {Encoding::ansi, Encoding::utf8, Encoding::utf16})
        if (const auto needle = needleIn(encoding, characters, letters))
            if (std::ranges::find(needles, needle->units, &HexNeedle::units) == needles.end())
                needles.push_back(*needle);
    return needles;
}

std::optional<HexNeedle> bigEndianNeedle(std::string_view text, LetterCase letters) {
    return needleIn(Encoding::utf16BigEndian, charactersOf(text), letters);
}

std::optional<HexNeedle> needleOfBytes(std::string_view text) {
    HexNeedle needle;
    std::optional<unsigned> high;
    for (const char c : text) {
        if (c == ' ' || c == '\t') {
            if (high)
                return std::nullopt;
            continue;
        }
        const auto digit = digitOf(c);
        if (!digit)
            return std::nullopt;
        if (high)
            needle.units.push_back({std::string(1, static_cast<char>(*high * 16 + *digit))});
        high = high ? std::nullopt : digit;
    }
    return high || needle.units.empty() ? std::nullopt : std::optional(needle);
}

std::optional<std::uint64_t> offsetIn(std::string_view text) {
    text = trim(text);
    int base = 10;
    if (startsWithNoCase(text, "0x")) {
        text.remove_prefix(2);
        base = 16;
    } else if (!text.empty() && (text.back() == 'h' || text.back() == 'H')) {
        text.remove_suffix(1);
        base = 16;
    }
    std::uint64_t offset = 0;
    const char *end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, offset, base);
    return failure == std::errc() && stop == end ? std::optional(offset) : std::nullopt;
}

HexSearch findInFile(const FileReader &file, const std::vector<HexNeedle> &needles,
                     std::uint64_t from, TaskMonitor &task) {
    if (needles.empty())
        return {};
    const NeedleSearch search(needles);
    for (std::uint64_t at = from; at < file.size(); at += kBlock) {
        if (!task.advance(static_cast<double>(at) / static_cast<double>(file.size())))
            return {std::nullopt, true};
        const Bytes block = file.read(at, kBlock + search.longest());
        if (auto match = search.firstIn(ByteView(block).raw(), 0, kBlock)) {
            match->offset += at;
            return {match, false};
        }
        if (file.size() - at <= kBlock)
            break;
    }
    return {};
}

} // namespace nv
