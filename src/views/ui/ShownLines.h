#pragma once

#include <QString>

#include <string_view>

namespace nv {

/// Text of several lines for a box of plain text, each line with the stand-ins that cells have.
/// Longer lines are cut at a million characters.
QString shownLines(std::string_view text);

} // namespace nv
