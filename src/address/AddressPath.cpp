#include "address/AddressPath.h"

#include "base/Text.h"

namespace nv {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The text behind a point at its beginning, in either form; the text itself when there is none.
std::string_view behindDot(std::string_view text) {
    if (text.starts_with('.'))
        return text.substr(1);
    return startsWithNoCase(text, "%2e") ? text.substr(3) : text;
}

} // namespace

bool isDriveLetter(std::string_view text) {
    return text.size() == 2 && isLetter(text[0]) && (text[1] == ':' || text[1] == '|');
}

bool startsWithDriveLetter(std::string_view text) {
    constexpr std::string_view kBehind = "/\\?#";
    return isDriveLetter(text.substr(0, 2)) &&
           (text.size() == 2 || kBehind.find(text[2]) != std::string_view::npos);
}

bool isSingleDot(std::string_view segment) {
    return !segment.empty() && behindDot(segment).empty();
}

bool isDoubleDot(std::string_view segment) {
    const std::string_view second = behindDot(segment);
    return second.size() < segment.size() && isSingleDot(second);
}

void shortenPath(std::string &path, bool isFile) {
    const bool isDrive =
        path.size() == 3 && isDriveLetter(std::string_view(path).substr(1)) && path.back() == ':';
    if (path.empty() || (isFile && isDrive))
        return;
    path.resize(path.rfind('/'));
}

} // namespace nv
