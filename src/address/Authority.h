#pragma once

#include "address/AddressParts.h"

#include <string_view>

namespace nv {

/// Reads "user:word@host:port" into `parts`, whose scheme is known. False where it is none: then no
/// address comes of the text.
bool readAuthority(std::string_view text, AddressParts &parts);

} // namespace nv
