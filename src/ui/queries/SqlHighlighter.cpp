#include "ui/queries/SqlHighlighter.h"

#include <QGuiApplication>
#include <QPalette>
#include <QRegularExpression>

namespace nv {

namespace {

struct Colours {
    QRgb word, text, value;
};
// Each stands out from its ground by 4.5:1 or more.
constexpr Colours kLight = {0xff0b57b7, 0xff1b6e34, 0xff8a4b08};
constexpr Colours kDark = {0xff79b4f5, 0xff8fd19e, 0xffe6b673};

/// Texts and dates come first: what stands in them is no word.
const QRegularExpression &tokens() {
    static const QRegularExpression pattern(
        QStringLiteral(
            R"((?<text>'(?:[^']|'')*'?)|(?<value>#[^#]*#|\b\d+(?:\.\d+)?\b)|)"
            R"(\b(?<word>SELECT|FROM|WHERE|ORDER|GROUP|BY|ASC|DESC|AND|OR|NOT|LIKE|BETWEEN|IN|IS|NULL|)"
            R"(TOP|DISTINCT|AS|INNER|LEFT|JOIN|ON|UNION|ALL|HAVING|True|False)\b)"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

} // namespace

void SqlHighlighter::highlightBlock(const QString &text) {
    const bool dark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    const Colours &colours = dark ? kDark : kLight;
    auto matches = tokens().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        QTextCharFormat format;
        const bool isWord = match.hasCaptured(QStringLiteral("word"));
        const bool isText = match.hasCaptured(QStringLiteral("text"));
        format.setForeground(QColor::fromRgb(isWord   ? colours.word
                                             : isText ? colours.text
                                                      : colours.value));
        if (isWord)
            format.setFontWeight(QFont::DemiBold);
        setFormat(static_cast<int>(match.capturedStart()), static_cast<int>(match.capturedLength()),
                  format);
    }
}

} // namespace nv
