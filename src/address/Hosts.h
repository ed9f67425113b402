#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// The host as an address has it, from the text between "//" (or "@") and ":", "/", "?" or "#",
/// which isn't empty; nothing where it is none. Hosts of schemes that aren't special are opaque:
/// nobody knows whether they are domains.
std::optional<std::string> parsedHost(std::string_view text, bool isOpaque);

} // namespace nv
