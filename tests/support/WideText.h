#pragma once

#include <string>
#include <string_view>

namespace nv::test {

/// ASCII in UTF-16, without a mark.
inline std::string wideText(std::string_view ascii, bool isBigEndian) {
    std::string wide;
    for (const char c : ascii)
        wide += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return wide;
}

/// The same behind its mark.
inline std::string markedWideText(std::string_view ascii, bool isBigEndian) {
    return (isBigEndian ? "\xFE\xFF" : "\xFF\xFE") + wideText(ascii, isBigEndian);
}

} // namespace nv::test
