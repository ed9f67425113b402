#pragma once

#include "base/ByteView.h"

#include <string>
#include <string_view>

namespace nv {

std::string base64(ByteView bytes);

/// The bytes that a text stands for; what is no letter of the code is passed over, and "=" ends it.
std::string fromBase64(std::string_view text);

} // namespace nv
