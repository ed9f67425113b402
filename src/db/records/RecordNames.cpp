#include "db/records/RecordNames.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

namespace {

constexpr std::size_t kShortestFileName = 6;

constexpr std::array<std::string_view, 7> kHostEndings = {"com", "org", "ws", "net",
                                                          "uk",  "ca",  "mil"};
constexpr std::array<std::string_view, 7> kPictures = {"jpg", "bmp", "jpe", "jpeg",
                                                       "png", "gif", "tif"};
constexpr std::array<std::string_view, 11> kNeither = {"swf", "ico", "wmv", "avi", "mpg", "mpeg",
                                                       "mpe", "fla", "dll", "pdf", "txt"};

template <std::size_t Count>
bool isOneOf(std::string_view extension, const std::array<std::string_view, Count> &list) {
    return std::ranges::any_of(
        list, [extension](std::string_view each) { return equalsNoCase(each, extension); });
}

/// Whether the last piece of a URL may be the name of a file.
bool mayBeFileName(std::string_view tail) {
    return tail.find('.') != std::string_view::npos && charCount(tail) >= kShortestFileName &&
           !startsWithNoCase(tail, "http") && !startsWithNoCase(tail, "res:") &&
           !startsWithNoCase(tail, "file://");
}

/// What stands after the last slash; nothing without one, as with a cookie's host.
std::string_view tailOf(std::string_view url) {
    return url.find_first_of("/\\") == std::string_view::npos ? std::string_view()
                                                              : getFilenameFromPath(url);
}

/// A tail that ends as host names do gives neither a name nor an extension, and takes a reader's
/// name away that can only be the host. Without a tail the name is the reader's own, such as a
/// cookie's.
void nameFromUrl(UrlRecord &record) {
    const std::string_view tail = tailOf(record.URL);
    const std::string extension = getFileExtension(record.URL);
    const bool isHost = isOneOf(extension, kHostEndings);
    if (isHost && !tail.empty())
        record.URLFileName.clear();
    if (!isHost && mayBeFileName(tail)) {
        record.URLFileName = tail;
        // What the reader knows of the cached file stands where the URL tells nothing.
        if (!extension.empty())
            record.CacheFileExt = extension;
    }
    if (!record.CacheFileExt.empty())
        record.URLFileExt = record.CacheFileExt;
    else
        record.URLFileExt = isHost ? std::string() : extension;
}

/// Goes by the extension of the cached file; what the reader called a picture stays one.
void kindFromExtension(UrlRecord &record) {
    // A stylesheet counts too: the flag tells an ingredient of a page from a page.
    if (equalsNoCase(record.URLFileExt, "js") || equalsNoCase(record.URLFileExt, "css"))
        record.IsJavascript = true;
    if (record.IsPicture)
        return;
    record.IsPicture = isOneOf(record.CacheFileExt, kPictures);
    if (record.IsPicture || isOneOf(record.CacheFileExt, kNeither))
        record.IsWebPage = false;
}

} // namespace

void orderNames(UrlRecord &record) {
    nameFromUrl(record);
    if (record.URLRawValue.empty())
        record.URLRawValue = record.URL;
    kindFromExtension(record);
}

} // namespace nv
