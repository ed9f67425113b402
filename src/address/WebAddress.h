#pragma once

#include "address/AddressParts.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nv {

/// Longer texts are no addresses: browsers have the same limit.
inline constexpr std::size_t kMaxAddressBytes = std::size_t{2} << 20;

/// An address by the URL standard. Parts are ASCII, as the standard's serialiser writes them.
class WebAddress {
  public:
    /// Nothing where the standard's parser fails, and for texts beyond kMaxAddressBytes. `text` is
    /// UTF-8; bytes that aren't become U+FFFD. `charset` is the one that a query is
    /// percent-encoded in (the page's; empty or unknown: UTF-8). Takes time that grows with the
    /// text. `base` is only read.
    static std::optional<WebAddress> parsed(std::string_view text, const WebAddress *base = nullptr,
                                            std::string_view charset = {});

    const std::string &scheme() const { return m_parts.scheme; } ///< "https", without ":"
    const std::string &username() const { return m_parts.username; }
    const std::string &password() const { return m_parts.password; }
    std::string host() const { return m_parts.host.value_or(std::string()); } ///< empty for none
    /// False for "mailto:x", true for "file:///x", whose host is empty.
    bool hasHost() const { return m_parts.host.has_value(); }
    /// None for the scheme's default.
    std::optional<std::uint16_t> port() const { return m_parts.port; }
    const std::string &path() const { return m_parts.path; } ///< opaque ones too
    /// True for "mailto:x" and "data:...": no other address can be relative to it.
    bool hasOpaquePath() const { return m_parts.isPathOpaque; }
    /// Of ftp, file, http, https, ws and wss, which have rules of their own.
    bool isSpecial() const;
    const std::optional<std::string> &query() const { return m_parts.query; }       ///< without "?"
    const std::optional<std::string> &fragment() const { return m_parts.fragment; } ///< without "#"

    std::string href() const;
    std::string withoutFragment() const;
    std::string upToPath() const; ///< without query and fragment
    std::string origin() const;   ///< "https://host:port", or "null"

    const AddressParts &parts() const { return m_parts; }
    friend bool operator==(const WebAddress &, const WebAddress &) = default;

  private:
    explicit WebAddress(AddressParts parts) : m_parts(std::move(parts)) {}

    AddressParts m_parts;
};

} // namespace nv
