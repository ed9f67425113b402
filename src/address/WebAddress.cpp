#include "address/WebAddress.h"

#include "address/AddressParser.h"
#include "address/Schemes.h"

namespace nv {

namespace {

std::string portOf(const AddressParts &parts) {
    return parts.port ? ":" + std::to_string(*parts.port) : std::string();
}

std::string credentialsOf(const AddressParts &parts) {
    if (parts.username.empty() && parts.password.empty())
        return {};
    return parts.username + (parts.password.empty() ? "" : ":" + parts.password) + "@";
}

/// What stands between the scheme and the path.
std::string placeOf(const AddressParts &parts) {
    if (parts.host)
        return "//" + credentialsOf(parts) + *parts.host + portOf(parts);
    // Without it a path that begins with two slashes would be read as a host.
    return !parts.isPathOpaque && parts.path.starts_with("//") ? "/." : "";
}

} // namespace

std::optional<WebAddress> WebAddress::parsed(std::string_view text, const WebAddress *base,
                                             std::string_view charset) {
    if (text.size() > kMaxAddressBytes)
        return std::nullopt;
    std::optional<AddressParts> parts =
        parsedAddress(text, base == nullptr ? nullptr : &base->m_parts, charset);
    if (!parts)
        return std::nullopt;
    return WebAddress(std::move(*parts));
}

bool WebAddress::isSpecial() const {
    return isSpecialScheme(m_parts.scheme);
}

std::string WebAddress::upToPath() const {
    return m_parts.scheme + ":" + placeOf(m_parts) + m_parts.path;
}

std::string WebAddress::withoutFragment() const {
    return upToPath() + (m_parts.query ? "?" + *m_parts.query : "");
}

std::string WebAddress::href() const {
    return withoutFragment() + (m_parts.fragment ? "#" + *m_parts.fragment : "");
}

std::string WebAddress::origin() const {
    if (m_parts.scheme == "blob") {
        // Only such an address within the blob's has an origin, so this goes one step deep at most.
        const std::optional<WebAddress> within = parsed(m_parts.path);
        const bool isWeb = within && (within->scheme() == "http" || within->scheme() == "https");
        return isWeb ? within->origin() : "null";
    }
    if (!isSpecial() || m_parts.scheme == "file")
        return "null";
    return m_parts.scheme + "://" + host() + portOf(m_parts);
}

} // namespace nv
