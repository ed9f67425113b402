#include "rebuild/ReplaceableTags.h"

#include "base/Text.h"

#include <algorithm>
#include <vector>

namespace nv {

namespace {

constexpr std::size_t kCharsOfExtension = 4;

bool isListed(std::string_view word, std::string_view list) {
    const std::vector<std::string_view> entries = split(list, ';');
    return std::any_of(entries.begin(), entries.end() - 1, // what follows the last ";" is none
                       [word](std::string_view entry) { return equalsNoCase(entry, word); });
}

} // namespace

bool isReplaceablePicture(std::string_view tag, std::string_view list) {
    const std::size_t length = charCount(tag);
    if (length <= kCharsOfExtension)
        return false;
    std::string_view ending = charSub(tag, length - kCharsOfExtension);
    if (const std::size_t point = ending.find('.'); point != std::string_view::npos)
        ending.remove_prefix(point + 1);
    return isListed(ending, list);
}

bool isReplaceableHREF(std::string_view tag, std::string_view list) {
    return charCount(tag) > kCharsOfExtension && isListed(getFileExtension(tag), list);
}

} // namespace nv
