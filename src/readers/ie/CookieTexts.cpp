#include "readers/ie/CookieTexts.h"

#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/FactDate.h"
#include "readers/ie/IndexRecord.h"
#include "time/SourceClocks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kLines = 9;
constexpr std::size_t kFirstNumber = 3;
constexpr std::size_t kNumbers = 5;
constexpr std::string_view kEnd = "*";

struct Line {
    std::uint64_t offset;
    std::string_view text;
};

std::vector<Line> linesOf(std::string_view text) {
    std::vector<Line> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string_view line = text.substr(at, end - at);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        lines.push_back({at, line});
        at = end + 1;
    }
    return lines;
}

std::optional<std::uint32_t> numberOf(std::string_view text) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

Date fileTime(std::uint32_t low, std::uint32_t high) {
    return fileTimeToUtc(std::uint64_t{high} << 32 | low);
}

std::string textIn(const Line &line) {
    return fromAnsi(viewOf(line.text));
}

/// By the places of the lines and not by the mark at its end alone: "*" may be a value as well.
std::optional<TextCookie> cookieAt(const std::vector<Line> &lines, std::size_t first) {
    if (lines.size() - first < kLines || lines[first + kLines - 1].text != kEnd)
        return std::nullopt;
    std::array<std::uint32_t, kNumbers> numbers{};
    for (std::size_t i = 0; i < kNumbers; ++i) {
        const auto number = numberOf(lines[first + kFirstNumber + i].text);
        if (!number)
            return std::nullopt;
        numbers[i] = *number;
    }
    const auto &[flags, expiresLow, expiresHigh, createdLow, createdHigh] = numbers;
    return TextCookie{lines[first].offset,
                      textIn(lines[first]),
                      textIn(lines[first + 1]),
                      textIn(lines[first + 2]),
                      flags,
                      fileTime(expiresLow, expiresHigh),
                      fileTime(createdLow, createdHigh)};
}

/// The line after the end of what is no cookie, or the first line of one.
std::size_t behindDamage(const std::vector<Line> &lines, std::size_t at) {
    if (lines[at].text.empty())
        return at + 1;
    while (at < lines.size() && lines[at].text != kEnd)
        if (++at < lines.size() && cookieAt(lines, at))
            return at;
    return at + 1;
}

/// What the browser's flags say, one after the other. Bits of no name leave the number alone.
std::string wordsOf(std::uint32_t flags) {
    constexpr std::array<std::pair<std::uint32_t, std::string_view>, 6> kWords = {
        {{0x1, "secure"},
         {0x2, "session"},
         {0x10, "third party"},
         {0x20, "asks the user"},
         {0x200, "restricted"},
         {0x2000, "hidden from scripts"}}};
    std::string words;
    for (const auto &[bit, word] : kWords)
        if ((flags & bit) != 0)
            words.append(words.empty() ? "" : ", ").append(word);
    return words;
}

const char *yesOrNo(bool is) {
    return is ? "yes" : "no";
}

} // namespace

TextCookies cookiesOf(ByteView text) {
    TextCookies found;
    const std::vector<Line> lines = linesOf(text.raw());
    for (std::size_t at = 0; at < lines.size();) {
        if (auto cookie = cookieAt(lines, at)) {
            found.cookies.push_back(std::move(*cookie));
            at += kLines;
            continue;
        }
        found.damaged += lines[at].text.empty() ? 0 : 1;
        at = behindDamage(lines, at);
    }
    return found;
}

void addCookieFacts(UrlRecord &url, const TextCookie &cookie) {
    constexpr std::uint32_t kSecure = 0x1;
    constexpr std::uint32_t kHiddenFromScripts = 0x2000;
    FactList &facts = url.facts;
    facts.add("cookie_name", cookie.name);
    facts.add("cookie_value", cookie.value);
    if (const std::size_t slash = cookie.place.find('/'); slash != std::string::npos)
        facts.add("path", cookie.place.substr(slash));
    facts.add("secure", std::string(yesOrNo((cookie.flags & kSecure) != 0)));
    facts.add("http_only", std::string(yesOrNo((cookie.flags & kHiddenFromScripts) != 0)));
    facts.add("cookie_flags", wordsOf(cookie.flags), std::int64_t{cookie.flags});
    facts.add("created", factDate(cookie.created));
    facts.add("expires", factDate(cookie.expires));
}

/// The index tells of the file and not of a cookie in it, so its dates and its count are left out.
UrlRecord furtherCookie(const UrlRecord &file, const TextCookie &cookie) {
    UrlRecord url = file;
    url.URLID = UrlId::none;
    url.facts.clear();
    url.URLRawValue = cookie.place;
    url.host.clear();
    setUrl(url, cookie.place);
    if (url.host.empty()) // a cookie's text names no protocol
        url.host = parseHost("://" + url.URL);
    url.User = file.User;
    url.Links = url.URL + ";";
    url.ActionDateUTC = cookie.created;
    url.ActionDateLocal = Date();
    url.OtherDate = Date();
    url.OtherDateMeaning.clear();
    url.ExpiryDate = cookie.expires;
    url.URLFileName = cookie.name;
    url.URLParameters = cookie.value;
    url.MetaData = cookie.value;
    url.Visits = kVisitsUnknown;
    addCookieFacts(url, cookie);
    url.facts.add("source_offset", static_cast<std::int64_t>(cookie.offset));
    return url;
}

} // namespace nv
