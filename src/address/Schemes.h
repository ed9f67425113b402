#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

/// ftp, file, http, https, ws and wss. `scheme` is in small letters, without ":".
bool isSpecialScheme(std::string_view scheme);

/// The port that goes without saying; nothing for file and for schemes that aren't special.
std::optional<std::uint16_t> defaultPort(std::string_view scheme);

} // namespace nv
