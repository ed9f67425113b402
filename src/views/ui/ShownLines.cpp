#include "views/ui/ShownLines.h"

#include "base/Text.h"
#include "platform/qt/QtText.h"
#include "views/CellText.h"

#include <QStringList>

namespace nv {

namespace {

constexpr std::size_t kMostChars = 1'000'000;

/// Tabs stay as they are: a box of plain text shows them.
QString shownLine(std::string_view line) {
    QStringList parts;
    for (const std::string_view part : split(line, '\t'))
        parts += toQt(displayText(part, kMostChars));
    return parts.join(u'\t');
}

} // namespace

QString shownLines(std::string_view text) {
    const std::string unified = replaceAll(text, "\r\n", "\n");
    QStringList lines;
    for (const std::string_view line : split(unified, '\n'))
        lines += shownLine(line);
    return lines.join(u'\n');
}

} // namespace nv
