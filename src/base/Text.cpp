#include "base/Text.h"

#include <algorithm>
#include <numeric>

namespace nv {

namespace {

// Of ASCII alone and by no locale: what equals what in evidence is the same on every machine, and
// bytes of UTF-8 stay whole.
constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
constexpr char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}
constexpr bool sameLetter(char a, char b) {
    return lower(a) == lower(b);
}
constexpr bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (lower(c) >= 'a' && lower(c) <= 'z');
}

/// `GetFileExtension` looks no further back than this.
constexpr std::size_t kExtensionWindow = 7;
constexpr std::size_t kShortestPathWithExtension = 6;

ByteView spanFrom(ByteView bytes, std::uint64_t start, std::uint64_t length) {
    return length == 0 ? bytes.from(start) : bytes.sub(start, length);
}

} // namespace

std::string toLower(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), lower);
    return out;
}

std::string toUpper(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), upper);
    return out;
}

bool equalsNoCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameLetter);
}

bool startsWithNoCase(std::string_view text, std::string_view prefix) {
    return equalsNoCase(text.substr(0, prefix.size()), prefix);
}

std::size_t findNoCase(std::string_view text, std::string_view needle, std::size_t from) {
    if (from > text.size())
        return std::string_view::npos;
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                   needle.begin(), needle.end(), sameLetter);
    // An empty needle stands everywhere, also at the end.
    return found == text.end() && !needle.empty() ? std::string_view::npos
                                                  : static_cast<std::size_t>(found - text.begin());
}

bool containsNoCase(std::string_view text, std::string_view needle) {
    return findNoCase(text, needle) != std::string_view::npos;
}

std::string_view trim(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view with) {
    if (what.empty())
        return std::string(text);
    std::string out;
    std::size_t at = 0;
    for (std::size_t hit = 0; (hit = text.find(what, at)) != std::string_view::npos;
         at = hit + what.size())
        out.append(text, at, hit - at).append(with);
    return out.append(text, at);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t at = 0;;) {
        const std::size_t end = std::min(text.find(separator, at), text.size());
        parts.push_back(text.substr(at, end - at));
        if (end == text.size())
            return parts;
        at = end + 1;
    }
}

std::string GetFileExtension(std::string_view path) {
    // A character has four bytes at most: the rest of a long path needs no counting.
    if (charCount(path.substr(0, 4 * kShortestPathWithExtension)) < kShortestPathWithExtension)
        return {};
    const std::string_view tail =
        path.substr(path.size() - std::min(path.size(), kExtensionWindow));
    const std::size_t dot = tail.rfind('.');
    const bool leadsThePath = tail.size() == path.size() && dot == 0;
    if (dot == std::string_view::npos || leadsThePath)
        return {};
    const std::string_view extension = tail.substr(dot + 1);
    const bool clean =
        !extension.empty() && std::all_of(extension.begin(), extension.end(), isLetterOrDigit);
    return clean ? toLower(extension) : std::string();
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
    std::string text = std::to_string(count) + ' ';
    if (count == 1 || many.empty())
        text += one;
    else
        text += many;
    return count != 1 && many.empty() ? text + 's' : text;
}

std::size_t editDistance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : one) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t above = row[j + 1];
            row[j + 1] = std::min({above + 1, row[j] + 1, diagonal + (letter != other[j])});
            diagonal = above;
        }
    }
    return row.back();
}

std::string_view GetFilenameFromPath(std::string_view path) {
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string BytesToString(ByteView bytes, std::uint64_t start, std::uint64_t length,
                          bool stopAtZero, bool zeroToSpace) {
    ByteView part = spanFrom(bytes, start, length);
    if (stopAtZero)
        part = part.untilZero(0);
    std::string text = fromAnsi(part);
    if (zeroToSpace && length == 0)
        std::replace(text.begin(), text.end(), '\0', ' ');
    return text;
}

std::string BytesToHex(ByteView bytes, std::uint64_t start, std::uint64_t length, bool stopAtZero) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    ByteView part = spanFrom(bytes, start, length);
    if (stopAtZero)
        part = part.untilZero(0);
    std::string hex;
    hex.reserve(part.size() * 2);
    for (const char c : part.raw()) {
        const auto byte = static_cast<std::uint8_t>(c);
        hex.push_back(kDigits[byte >> 4]);
        hex.push_back(kDigits[byte & 0xF]);
    }
    return hex;
}

Bytes ReverseBytes(ByteView bytes) {
    const std::string_view raw = bytes.raw();
    return {raw.rbegin(), raw.rend()};
}

ByteView ByteSlice(ByteView bytes, std::uint64_t start, std::uint64_t count) {
    return bytes.sub(start, count);
}

} // namespace nv
