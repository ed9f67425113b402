#pragma once

#include <unicode/ucnv.h>

#include <memory>
#include <string>
#include <string_view>

namespace nv {

/// ICU's converter of an encoding; null for a name that nobody knows.
using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

/// By the name that a page gives. Names of the Encoding standard are read as it says: many stand
/// for a larger encoding, and pages rely on it. Others are ICU's own.
Converter converterOf(std::string_view charset);

/// The Encoding standard's name of the encoding that a label stands for, in lower case; empty for a
/// label that browsers don't know.
std::string_view webEncodingOf(std::string_view label);

/// In UTF-8; bytes that the encoding doesn't know become U+FFFD.
std::string convert(std::string_view bytes, UConverter *converter);

} // namespace nv
