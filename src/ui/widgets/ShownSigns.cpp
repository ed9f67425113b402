#include "ui/widgets/ShownSigns.h"

#include <algorithm>

namespace nv {

namespace {

constexpr char16_t kSigns = 0x2400; ///< of the characters 0 to 0x20, in order
constexpr char16_t kLastSign = 0x2421;
constexpr char16_t kTab = 0x2409;
constexpr char16_t kLineFeed = 0x240A;
constexpr char16_t kReturn = 0x240D;
constexpr char16_t kDelete = 0x7F;

bool isSign(QChar each) {
    return each.unicode() >= kSigns && each.unicode() <= kLastSign;
}

QString shownSign(char16_t sign) {
    switch (sign) {
    case kLineFeed:
    case kReturn:
        return QStringLiteral("\u21B5");
    case kTab:
        return QStringLiteral("\u21E5");
    default:
        const uint code = sign == kLastSign ? kDelete : sign - kSigns;
        return QStringLiteral("<U+%1>").arg(code, 4, 16, QLatin1Char('0')).toUpper();
    }
}

} // namespace

QString shownSigns(const QString &text) {
    if (std::none_of(text.begin(), text.end(), isSign))
        return text;
    QString shown;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char16_t each = text[at].unicode();
        const bool isBreakOfTwo =
            each == kReturn && at + 1 < text.size() && text[at + 1].unicode() == kLineFeed;
        if (isBreakOfTwo)
            continue; // the line feed stands for both
        shown += isSign(text[at]) ? shownSign(each) : QString(text[at]);
    }
    return shown;
}

} // namespace nv
