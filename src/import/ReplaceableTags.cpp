#include "import/ReplaceableTags.h"

#include "base/Text.h"

namespace nv {

namespace {

constexpr std::size_t kCharsOfExtension = 4;

bool isListed(std::string_view word, std::string_view list) {
    for (std::size_t end; (end = list.find(';')) != std::string_view::npos;
         list.remove_prefix(end + 1))
        if (equalsNoCase(list.substr(0, end), word))
            return true;
    return false;
}

} // namespace

bool IsReplaceablePicture(std::string_view tag, std::string_view list) {
    const std::size_t length = charCount(tag);
    if (length <= kCharsOfExtension)
        return false;
    std::string_view ending = charSub(tag, length - kCharsOfExtension);
    if (const std::size_t point = ending.find('.'); point != std::string_view::npos)
        ending.remove_prefix(point + 1);
    return isListed(ending, list);
}

bool IsReplaceableHREF(std::string_view tag, std::string_view list) {
    return charCount(tag) > kCharsOfExtension && isListed(GetFileExtension(tag), list);
}

} // namespace nv
