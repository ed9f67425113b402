#include "reports/WaysOut.h"

#include "base/Text.h"
#include "rebuild/PageText.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";

// What browsers fetch by; "href" is also that of links, which lead nowhere then but were dead.
constexpr std::array<std::string_view, 6> kFetching = {"src",    "href", "background",
                                                       "poster", "data", "lowsrc"};
// Addresses that stay: the policy refuses to fetch them, and as links they do no harm.
constexpr std::array<std::string_view, 8> kOfTheWeb = {
    "http:", "https:", "ftp:", "data:", "mailto:", "javascript:", "about:", "void:"};

/// Of a longer address the rest isn't read: else a page of one word takes for ever.
constexpr std::size_t kLongestAddress = 4096;

bool isBlank(char c) {
    return kBlanks.find(c) != std::string_view::npos;
}

bool isSlash(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == '/' || text[at] == '\\');
}

std::size_t pastBlanks(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(kBlanks, at), text.size());
}

/// "//host/x" and "\\host\x" behind a quotation mark, "=" or "(" name a file server when the page
/// is a file; on the web they meant a site, which the policy refuses. "file:" may name one too.
std::string withoutServers(std::string_view page) {
    std::string named;
    named.reserve(page.size());
    for (std::size_t at = 0; at < page.size(); ++at) {
        named += page[at];
        if (std::string_view("\"'=(").find(page[at]) == std::string_view::npos)
            continue;
        const std::size_t next = pastBlanks(page, at + 1);
        if (isSlash(page, next) && isSlash(page, next + 1)) {
            named += "http://";
            at = next + 1;
        }
    }
    return ReplaceAllText(ReplaceAllText(named, "file:/", "void:/"), "file:\\", "void:/");
}

/// Whether `text` ends with the whole word.
bool endsWithWord(std::string_view text, std::string_view word) {
    if (text.size() < word.size() || !equalsNoCase(text.substr(text.size() - word.size()), word))
        return false;
    const std::size_t before = text.size() - word.size();
    return before == 0 ||
           std::string_view(" \t\r\n\f\"'/:").find(text[before - 1]) != std::string_view::npos;
}

/// Whether an address begins behind the first `at` characters; `at` is behind a "=", a "(" or the
/// last letter of "@import".
bool isFetched(std::string_view text, std::size_t at) {
    std::string_view before = text.substr(0, at);
    if (startsWithNoCase(before.substr(before.size() - std::min<std::size_t>(7, before.size())),
                         "@import"))
        return true;
    const char sign = before.back();
    before.remove_suffix(1);
    if (sign == '(') {
        constexpr std::string_view kUrl = "url";
        return before.size() >= kUrl.size() &&
               equalsNoCase(before.substr(before.size() - kUrl.size()), kUrl);
    }
    if (sign != '=')
        return false;
    while (!before.empty() && isBlank(before.back()))
        before.remove_suffix(1);
    return std::ranges::any_of(
        kFetching, [before](std::string_view word) { return endsWithWord(before, word); });
}

/// A plain name of a file of the folder, or of one below it, stays: there is none but the parts.
bool leadsOut(std::string_view address) {
    if (address.empty() || address.front() == '#' || isPart(address))
        return false;
    if (std::ranges::any_of(kOfTheWeb, [address](std::string_view scheme) {
            return startsWithNoCase(address, scheme);
        }))
        return false;
    // Any of these may stand for "/", ".." or the letter of a drive once it is read.
    return address.size() == kLongestAddress || isSlash(address, 0) ||
           address.find("..") != std::string_view::npos ||
           address.find_first_of("%&\\:\t\r\n") != std::string_view::npos;
}

/// The address that begins at `at`, behind its quotation mark where there is one.
std::string_view addressAt(std::string_view text, std::size_t &at) {
    at = pastBlanks(text, at);
    std::string_view ends = " \t\r\n\f>)\"'";
    if (at < text.size() && (text[at] == '"' || text[at] == '\'')) {
        ends = text.substr(at, 1);
        while (++at < text.size() && static_cast<unsigned char>(text[at]) <= ' ') {
        }
    }
    const std::string_view rest = text.substr(at, kLongestAddress);
    return rest.substr(0, std::min(rest.find_first_of(ends), rest.size()));
}

} // namespace

bool isPart(std::string_view address) {
    constexpr std::size_t kDigits = 7;
    const std::size_t digits = std::min(address.find_first_not_of("0123456789"), address.size());
    return digits == kDigits &&
           (address.size() == digits ||
            (address[digits] == '.' && address.find("..") == std::string_view::npos));
}

std::string withoutWaysOut(std::string_view text) {
    const std::string named = withoutServers(text);
    const std::string_view page = named;
    std::string closed;
    closed.reserve(page.size());
    std::size_t from = 0;
    for (std::size_t at = page.find_first_of("=(tT"); at != std::string_view::npos;
         at = page.find_first_of("=(tT", at + 1)) {
        if (!isFetched(page, at + 1))
            continue;
        std::size_t begin = at + 1;
        if (leadsOut(addressAt(page, begin))) {
            closed.append(page.substr(from, begin - from)).append("void:");
            from = begin;
        }
    }
    return closed.append(page.substr(from));
}

} // namespace nv
