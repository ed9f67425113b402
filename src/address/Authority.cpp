#include "address/Authority.h"

#include "address/Hosts.h"
#include "address/PercentSets.h"
#include "address/Schemes.h"

#include <algorithm>
#include <cstddef>

namespace nv {

namespace {

void readCredentials(std::string_view text, AddressParts &parts) {
    const std::size_t colon = std::min(text.find(':'), text.size());
    parts.username = percentEncoded(text.substr(0, colon), PercentSet::userinfo);
    if (colon < text.size())
        parts.password = percentEncoded(text.substr(colon + 1), PercentSet::userinfo);
}

bool readPort(std::string_view digits, AddressParts &parts) {
    unsigned value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + static_cast<unsigned>(c - '0');
        if (value > 65535)
            return false;
    }
    if (!digits.empty() && defaultPort(parts.scheme) != value)
        parts.port = static_cast<std::uint16_t>(value);
    return true;
}

/// Where the host ends: the first colon that isn't in brackets, or the end.
std::size_t endOfHost(std::string_view text) {
    bool isInBrackets = false;
    std::size_t at = 0;
    for (; at < text.size() && (isInBrackets || text[at] != ':'); ++at)
        if (text[at] == '[' || text[at] == ']')
            isInBrackets = text[at] == '[';
    return at;
}

} // namespace

bool readAuthority(std::string_view text, AddressParts &parts) {
    const std::size_t sign = text.rfind('@');
    const bool hasCredentials = sign != std::string_view::npos;
    if (hasCredentials) {
        readCredentials(text.substr(0, sign), parts);
        text.remove_prefix(sign + 1);
    }
    const std::size_t end = endOfHost(text);
    if (end == 0) { // only other schemes have nobody's place, as in "app:///x"
        parts.host.emplace();
        return text.empty() && !hasCredentials && !isSpecialScheme(parts.scheme);
    }
    parts.host = parsedHost(text.substr(0, end), !isSpecialScheme(parts.scheme));
    return parts.host && (end == text.size() || readPort(text.substr(end + 1), parts));
}

} // namespace nv
