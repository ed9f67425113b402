#pragma once

#include <string>
#include <string_view>

namespace nv {

/// Evidence text as one line of a longer text, whole: displayText() without its end. Bytes that are
/// no UTF-8 are read as Windows-1252. A file's name can hold line breaks: as it stands it could
/// forge the lines around it.
std::string oneLine(std::string_view text);

} // namespace nv
