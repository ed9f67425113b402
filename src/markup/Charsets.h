#pragma once

#include <unicode/ucnv.h>

#include <memory>
#include <string>
#include <string_view>

namespace nv {

/// ICU's converter of an encoding; null for a name that nobody knows.
using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

/// By the name that a page gives; browsers read some names as a larger encoding's, and pages rely
/// on it.
Converter converterOf(std::string_view charset);

/// In UTF-8; bytes that the encoding doesn't know become U+FFFD.
std::string convert(std::string_view bytes, UConverter *converter);

} // namespace nv
