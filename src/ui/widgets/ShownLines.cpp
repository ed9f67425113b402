#include "ui/widgets/ShownLines.h"

#include "base/Text.h"
#include "platform/qt/QtText.h"
#include "ui/widgets/ShownSigns.h"
#include "views/rows/CellText.h"

#include <QStringList>

namespace nv {

namespace {

/// Tabs stay as they are: a box of plain text shows them.
QString shownLine(std::string_view line) {
    QStringList parts;
    for (const std::string_view part : split(line, '\t'))
        parts += shownSigns(toQt(displayText(part, part.size())));
    return parts.join(u'\t');
}

/// Broken after a blank or sign where there is one near: words stay whole, and can be found.
qsizetype breakIn(const QString &line, qsizetype from) {
    constexpr qsizetype kNear = 500;
    const qsizetype limit = from + static_cast<qsizetype>(kMostLineChars);
    for (qsizetype at = limit; at > limit - kNear; --at)
        if (!line[at - 1].isLetterOrNumber() && !line[at - 1].isSurrogate())
            return at;
    return line[limit - 1].isHighSurrogate() ? limit - 1 : limit;
}

void addLine(QStringList &lines, const QString &line) {
    qsizetype from = 0;
    while (line.size() - from > static_cast<qsizetype>(kMostLineChars)) {
        const qsizetype end = breakIn(line, from);
        lines += line.mid(from, end - from);
        from = end;
    }
    lines += line.mid(from);
}

} // namespace

QString shownLines(std::string_view text) {
    const std::string unified = replaceAll(text, "\r\n", "\n");
    QStringList lines;
    for (const std::string_view line : split(unified, '\n'))
        addLine(lines, shownLine(line));
    return lines.join(u'\n');
}

} // namespace nv
