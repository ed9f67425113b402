#pragma once

#include <QString>

#include <string_view>

namespace nv {

/// Characters of a line; longer lines are broken, as a box of text takes a minute to lay out a
/// line of a million.
inline constexpr std::size_t kMostLineChars = 8000;

/// Text of several lines for a box of plain text, each line with the stand-ins that cells have.
QString shownLines(std::string_view text);

} // namespace nv
