#include "address/Hosts.h"

#include "address/DomainNames.h"
#include "address/NumberHosts.h"
#include "address/PercentSets.h"

#include <algorithm>

namespace nv {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kForbidden = "\0\t\n\r #/:<>?@[\\]^|"sv;

bool hasForbidden(std::string_view host) {
    return host.find_first_of(kForbidden) != std::string_view::npos;
}

/// A domain can't hold as much.
bool hasForbiddenInDomain(std::string_view domain) {
    return hasForbidden(domain) || std::ranges::any_of(domain, [](char c) {
               return static_cast<unsigned char>(c) < 0x20 || c == '%' || c == 0x7F;
           });
}

std::optional<std::string> domainHost(std::string_view text) {
    std::optional<std::string> domain = asciiDomain(bytesOfEscapes(text));
    if (!domain || domain->empty() || hasForbiddenInDomain(*domain))
        return std::nullopt;
    return endsInNumber(*domain) ? ipv4Host(*domain) : domain;
}

} // namespace

std::optional<std::string> parsedHost(std::string_view text, bool isOpaque) {
    if (text.starts_with('['))
        return text.size() > 1 && text.ends_with(']') ? ipv6Host(text.substr(1, text.size() - 2))
                                                      : std::nullopt;
    if (!isOpaque)
        return domainHost(text);
    return hasForbidden(text) ? std::nullopt
                              : std::optional(percentEncoded(text, PercentSet::control));
}

} // namespace nv
