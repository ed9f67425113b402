#pragma once

#include <string>
#include <string_view>

namespace nv {

/// The lines of an answer's headers, which caches part by zeros: with "\r\n" after each.
std::string headersInLines(std::string_view partedByZeros);

/// What the line "Content-Type" says, lower-case and without its parameters; empty without one.
std::string mimeTypeOf(std::string_view headers);

} // namespace nv
