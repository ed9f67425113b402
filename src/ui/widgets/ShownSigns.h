#pragma once

#include <QString>

namespace nv {

/// A text with the stand-ins of displayText() as the window draws it: the signs for control
/// characters (U+2400 to U+2421) are in none of the fonts that Debian comes with. A line break
/// becomes an arrow down and left, a tab one against a bar, and any other control character is
/// written out as "<U+0001>". What is stored, exported and copied out of the table keeps its signs.
QString shownSigns(const QString &text);

} // namespace nv
