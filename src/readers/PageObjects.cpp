#include "readers/PageObjects.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

namespace {

// The lists that the program is delivered with.
constexpr std::array<std::string_view, 8> kTagExtensions = {"js",  "css",  "php", "txt",
                                                            "asp", "aspx", "htm", "html"};
constexpr std::array<std::string_view, 7> kPictureExtensions = {"jpe", "jpeg", "jpg", "gif",
                                                                "bmp", "png",  "tif"};

/// What stands after the last point of the URL's last four characters, or all of them.
std::string endingOf(std::string_view url) {
    const std::string_view tail = url.substr(url.size() - std::min<std::size_t>(url.size(), 4));
    return toLower(tail.substr(tail.rfind('.') + 1));
}

} // namespace

void setPageObjects(UrlRecord &record) {
    const auto isAmong = [](const auto &list, const std::string &extension) {
        return std::ranges::find(list, extension) != list.end();
    };
    record.IsValidHTMLTagObject = isAmong(kTagExtensions, getFileExtension(record.URL));
    record.IsValidHTMLPictureObject = isAmong(kPictureExtensions, endingOf(record.URL));
}

} // namespace nv
