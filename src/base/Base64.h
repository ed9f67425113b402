#pragma once

#include "base/ByteView.h"

#include <string>
#include <string_view>

namespace nv {

std::string base64(ByteView bytes);

/// Addresses have "-" and "_" where the code has "+" and "/".
enum class Base64Letters { ofCode, ofEither };

/// The bytes that a text stands for; what is no letter of the code is passed over, and "=" ends it.
std::string fromBase64(std::string_view text, Base64Letters letters = Base64Letters::ofCode);

} // namespace nv
