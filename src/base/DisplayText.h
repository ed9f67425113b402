#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nv {

/// Characters of a cell that are shown; the rest is "…".
inline constexpr std::size_t kCellChars = 300;

/// Evidence text as one line that can be shown: control characters get visible stand-ins,
/// characters that turn the direction of writing or have no width are written out as "<U+202E>" (a
/// file name must not look like another one), bytes that are no UTF-8 become U+FFFD, and what is
/// longer than `maxChars` characters is cut. The result is plain text: show it as such, never as
/// HTML. The window, the command line and reports all show evidence by this one routine.
std::string displayText(std::string_view text, std::size_t maxChars = kCellChars);

} // namespace nv
