#include "rebuild/exact/Bases.h"

#include "rebuild/exact/BasePolicy.h"

#include <utility>

namespace nv {

namespace {

const WebAddress *addressIn(const std::optional<WebAddress> &address) {
    return address ? &*address : nullptr;
}

} // namespace

Bases::Bases(const std::string &url, const std::string &base,
             const std::vector<std::string> &sources, std::string charset)
    : m_own(WebAddress::parsed(url)), m_charset(std::move(charset)), m_sources(sources),
      m_base(resolved(base, m_own)) {}

const WebAddress *Bases::of(const Reference &reference) {
    if (reference.base.empty())
        return addressIn(m_base);
    if (reference.base != m_named)
        m_ofFrame = resolved(reference.base, m_base);
    m_named = reference.base;
    return addressIn(m_ofFrame);
}

/// Browsers pass over a base that nothing can lie below, and one that a policy forbids.
std::optional<WebAddress> Bases::resolved(const std::string &base,
                                          const std::optional<WebAddress> &without) const {
    if (base.empty())
        return without;
    auto other = WebAddress::parsed(base, addressIn(without), m_charset);
    const bool isBase = other && other->scheme() != "data" && other->scheme() != "javascript" &&
                        (!m_own || isBaseAllowed(m_sources, *other, *m_own));
    return isBase ? other : without;
}

} // namespace nv
