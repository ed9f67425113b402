#pragma once

#include <string>
#include <string_view>

namespace nv {

/// In the letters of RFC 4648, A to Z and 2 to 7, filled up with "=" to a multiple of eight.
std::string base32(std::string_view bytes);

} // namespace nv
