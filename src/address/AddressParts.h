#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

/// What an address consists of. All texts are ASCII, in the spelling of the URL standard.
struct AddressParts {
    std::string scheme; ///< in small letters, without ":"
    std::string username;
    std::string password;
    /// Nothing where the address has no place for one ("mailto:x"), empty as in "file:///x".
    std::optional<std::string> host;
    std::optional<std::uint16_t> port; ///< never the scheme's own
    /// Each segment behind a "/" of its own; an opaque path as it stands.
    std::string path;
    bool isPathOpaque = false;
    std::optional<std::string> query;    ///< without "?"
    std::optional<std::string> fragment; ///< without "#"

    friend bool operator==(const AddressParts &, const AddressParts &) = default;
};

} // namespace nv
