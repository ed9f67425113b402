#include "readers/Dissection.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::array<std::string_view, 4> kProtocols = {"https:", "http:", "file:", "res:"};

/// What a URL without one of the protocols stands after, in the order of trial.
constexpr std::array<std::string_view, 2> kLeadingMarks = {":host: ", "@"};

constexpr std::size_t kShortestRawTextWithUser = 15;
constexpr std::size_t kLongestUserOfDateRange = 30;
constexpr std::size_t kLongestProtocol = 8;

// 0-based characters at which the user begins after each prefix of an index.
constexpr std::size_t kBehindVisited = 9;    // "Visited: "
constexpr std::size_t kBehindCookie = 7;     // "Cookie:"
constexpr std::size_t kBehindDateRange = 19; // ":2009010120090108: "

} // namespace

// An address that another one carries, as in "http://host/url?q=https://other/", was not opened.
std::string parseURLFromRawURL(std::string_view raw) {
    std::size_t begin = raw.size();
    for (const std::string_view protocol : kProtocols)
        begin = std::min(begin, findNoCase(raw, protocol));
    if (begin < raw.size())
        return std::string(raw.substr(begin));
    for (const std::string_view mark : kLeadingMarks)
        if (const std::size_t at = findNoCase(raw, mark);
            at != std::string_view::npos && at + mark.size() < raw.size())
            return std::string(raw.substr(at + mark.size()));
    return std::string(raw);
}

std::string parseUserFromURL(std::string_view raw) {
    const std::string_view text = trim(raw);
    const std::size_t at = text.find('@');
    if (at == std::string_view::npos || charCount(text) < kShortestRawTextWithUser)
        return {};
    const std::string_view before = text.substr(0, at);
    if (containsNoCase(before, "visited:"))
        return std::string(charSub(before, kBehindVisited));
    if (containsNoCase(before, "cookie:"))
        return std::string(charSub(before, kBehindCookie));
    if (!before.starts_with(':'))
        return std::string(before);
    const std::string_view user = charSub(before, kBehindDateRange);
    return charCount(user) > kLongestUserOfDateRange ? std::string() : std::string(user);
}

std::string getURLProtocol(std::string_view url) {
    constexpr std::size_t kEarliest = 3; // a mark before it is a drive letter's or stands alone
    const std::size_t mark = url.find(":/");
    const bool usable = mark != std::string_view::npos && mark >= kEarliest;
    const std::size_t end = usable ? mark : url.find(':');
    if (end == std::string_view::npos)
        return {};
    std::string_view word = url.substr(0, end);
    if (const std::size_t user = word.find('@'); usable && user != std::string_view::npos)
        word.remove_prefix(user + 1);
    return charCount(word) > kLongestProtocol ? std::string() : std::string(word);
}

std::string parseHost(std::string_view url) {
    const std::size_t mark = url.find("://");
    if (mark == std::string_view::npos)
        return {};
    std::string_view host = url.substr(mark + 3);
    host = host.substr(0, host.find_first_of("/\\?#"));
    if (const std::size_t user = host.rfind('@'); user != std::string_view::npos)
        host.remove_prefix(user + 1);
    const std::size_t end = host.starts_with('[') ? host.find(']') + 1 : host.find(':');
    return std::string(host.substr(0, end));
}

std::string parametersOf(std::string_view url) {
    const std::size_t mark = url.find('?');
    return mark == std::string_view::npos ? std::string() : std::string(url.substr(mark + 1));
}

} // namespace nv
