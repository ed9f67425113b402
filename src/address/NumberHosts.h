#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// Whether a host can only be an address of IPv4, or nothing: its last label is a number.
bool endsInNumber(std::string_view host);

/// "127.0.0.1" of any spelling ("0x7f.1"); nothing where it is none.
std::optional<std::string> ipv4Host(std::string_view host);

/// "[::1]" of what stands between the brackets; nothing where it is none.
std::optional<std::string> ipv6Host(std::string_view inside);

} // namespace nv
