#include "rebuild/exact/BasePolicy.h"

#include "base/Text.h"
#include "readers/HttpHeaders.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kBlanks = " \t\n\f\r";
/// What a longer list allows beyond isn't read: each address of a base is held against all of it.
constexpr std::size_t kLongestList = 4096;

/// The next word of a text, which is taken off; empty at its end.
std::string_view nextWord(std::string_view &text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

/// What stands in front of `mark`, which is taken off with it; empty where there is no mark.
std::string_view takenUpTo(std::string_view &text, std::string_view mark) {
    const std::size_t at = text.find(mark);
    if (at == std::string_view::npos)
        return {};
    const std::string_view front = text.substr(0, at);
    text.remove_prefix(at + mark.size());
    return front;
}

/// A source may always be reached by the safer scheme, too.
bool isOfScheme(const WebAddress &base, std::string_view scheme) {
    return equalsNoCase(base.scheme(), scheme) ||
           (equalsNoCase(scheme, "http") && base.scheme() == "https");
}

bool isOfHost(const WebAddress &base, std::string_view host) {
    if (host == "*")
        return true;
    const std::string own = base.host();
    if (!host.starts_with("*."))
        return !own.empty() && equalsNoCase(own, host);
    host.remove_prefix(1);
    return own.size() > host.size() &&
           equalsNoCase(std::string_view(own).substr(own.size() - host.size()), host);
}

bool isOfPort(const WebAddress &base, std::string_view port) {
    if (port == "*")
        return true;
    const bool isDefault = port.empty() || (port == "80" && base.scheme() == "http") ||
                           ((port == "80" || port == "443") && base.scheme() == "https");
    return base.port() ? port == std::to_string(*base.port()) : isDefault;
}

bool isBelow(const WebAddress &base, std::string_view path) {
    return path.empty() || path == "/" ||
           (path.ends_with('/') ? base.path().starts_with(path) : base.path() == path);
}

bool isOwn(const WebAddress &base, const WebAddress &own) {
    const bool isSafer = own.scheme() == "http" && base.scheme() == "https" &&
                         own.host() == base.host() && !own.port() && !base.port();
    return own.hasHost() && (base.origin() == own.origin() || isSafer);
}

/// `[scheme://]host[:port][/path]`.
bool isOfSite(const WebAddress &base, std::string_view site, const WebAddress &own) {
    const std::string_view scheme = takenUpTo(site, "://");
    if (!isOfScheme(base, scheme.empty() ? std::string_view(own.scheme()) : scheme))
        return false;
    const std::size_t slash = std::min(site.find('/'), site.size());
    const std::string_view path = site.substr(slash);
    std::string_view host = site.substr(0, slash);
    std::string_view port;
    if (const std::size_t colon = host.rfind(':');
        colon != std::string_view::npos && host.find(']', colon) == std::string_view::npos) {
        port = host.substr(colon + 1);
        host = host.substr(0, colon);
    }
    return isOfHost(base, host) && isOfPort(base, port) && isBelow(base, path);
}

bool matches(const WebAddress &base, std::string_view source, const WebAddress &own) {
    if (source == "*")
        return base.scheme() == "http" || base.scheme() == "https" || base.scheme() == own.scheme();
    if (equalsNoCase(source, "'self'"))
        return isOwn(base, own);
    if (source.starts_with('\''))
        return false; // 'none', and what is said of scripts only
    if (source.ends_with(':'))
        return isOfScheme(base, source.substr(0, source.size() - 1));
    return isOfSite(base, source, own);
}

} // namespace

std::optional<std::string> baseSourcesOf(std::string_view policy) {
    for (std::string_view directive : split(policy, ';'))
        if (equalsNoCase(nextWord(directive), "base-uri"))
            return std::string(trim(directive.substr(0, kLongestList)));
    return std::nullopt;
}

std::vector<std::string> baseSourcesIn(std::string_view httpHeader) {
    std::vector<std::string> lists;
    for (const std::string_view line : headerValues(httpHeader, "content-security-policy"))
        for (const std::string_view policy : split(line, ','))
            if (auto list = baseSourcesOf(policy))
                lists.push_back(*std::move(list));
    return lists;
}

bool isBaseAllowed(const std::vector<std::string> &lists, const WebAddress &base,
                   const WebAddress &own) {
    return std::ranges::all_of(lists, [&](std::string_view list) {
        for (std::string_view word = nextWord(list); !word.empty(); word = nextWord(list))
            if (matches(base, word, own))
                return true;
        return false;
    });
}

} // namespace nv
