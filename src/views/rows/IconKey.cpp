#include "views/rows/IconKey.h"

#include "base/Text.h"
#include "readers/RecordKind.h"

#include <algorithm>
#include <array>

namespace nv {
namespace {

using F = IconFamily;

struct KeyRow {
    std::string_view extension;
    std::string_view key;
    IconFamily family;
};

constexpr std::array<KeyRow, 36> kByExtension = {{
    {"txt", "txt", F::Text},        {"jpg", "jpg", F::Picture},   {"jpe", "jpg", F::Picture},
    {"jpeg", "jpg", F::Picture},    {"bmp", "bmp", F::Picture},   {"png", "png", F::Picture},
    {"tif", "tif", F::Picture},     {"gif", "gif", F::Picture},   {"js", "js", F::Script},
    {"css", "css", F::Stylesheet},  {"wav", "wav", F::Audio},     {"mp3", "mp3", F::Audio},
    {"xls", "xls", F::Spreadsheet}, {"doc", "doc", F::Document},  {"ppt", "ppt", F::Presentation},
    {"mdb", "mdb", F::Database},    {"wmv", "wmv", F::Video},     {"avi", "avi", F::Video},
    {"mpeg", "mpeg", F::Video},     {"mpg", "mpg", F::Video},     {"swf", "swf", F::Animation},
    {"fla", "fla", F::Animation},   {"zip", "zip", F::Archive},   {"gzip", "gzip", F::Archive},
    {"rar", "rar", F::Archive},     {"cab", "cab", F::Archive},   {"exe", "exe", F::Program},
    {"msi", "msi", F::Program},     {"iso", "iso", F::DiscImage}, {"pdf", "pdf", F::Pdf},
    {"asp", "asp", F::WebPage},     {"aspx", "aspx", F::WebPage}, {"html", "html", F::WebPage},
    {"htm", "htm", F::WebPage},     {"php", "php", F::WebPage},   {"cgi", "cgi", F::WebPage},
}};

/// The last four are the words that categorising writes for what the keys mean.
constexpr std::array<KeyRow, 8> kByCategory = {{
    {"Pictures", "Pictures", F::Picture},
    {"Multimedia", "Multimedia", F::Video},
    {"HTML", "HTML", F::WebPage},
    {"Scripts/HTML", "Scripts/HTML", F::WebPage},
    {"Scripts, HTML", "Scripts/HTML", F::WebPage},
    {"Movies, Animation", "Multimedia", F::Video},
    {"Music, Audio", "Multimedia", F::Video},
    {"Audio", "Multimedia", F::Video},
}};

/// What servers name. Of those that end in "/" all that begin so, unless one before is the whole.
constexpr std::array<KeyRow, 36> kByType = {{
    {"image/jpeg", "jpg", F::Picture},
    {"image/png", "png", F::Picture},
    {"image/gif", "gif", F::Picture},
    {"image/bmp", "bmp", F::Picture},
    {"image/tiff", "tif", F::Picture},
    {"image/", "Pictures", F::Picture},
    {"text/html", "html", F::WebPage},
    {"application/xhtml+xml", "html", F::WebPage},
    {"text/css", "css", F::Stylesheet},
    {"text/javascript", "js", F::Script},
    {"application/javascript", "js", F::Script},
    {"application/x-javascript", "js", F::Script},
    {"application/ecmascript", "js", F::Script},
    {"text/ecmascript", "js", F::Script},
    {"application/wasm", "js", F::Script},
    {"audio/mpeg", "mp3", F::Audio},
    {"audio/", "wav", F::Audio},
    {"video/", "Multimedia", F::Video},
    {"application/vnd.apple.mpegurl", "Multimedia", F::Video},
    {"application/dash+xml", "Multimedia", F::Video},
    {"font/", "font", F::Font},
    {"application/font-", "font", F::Font},
    {"application/x-font-", "font", F::Font},
    {"application/vnd.ms-fontobject", "font", F::Font},
    {"application/pdf", "pdf", F::Pdf},
    {"application/zip", "zip", F::Archive},
    {"application/gzip", "gzip", F::Archive},
    {"application/vnd.ms-excel", "xls", F::Spreadsheet},
    {"application/msword", "doc", F::Document},
    {"application/vnd.ms-powerpoint", "ppt", F::Presentation},
    {"application/x-shockwave-flash", "swf", F::Animation},
    {"application/json", "txt", F::Text},
    {"application/manifest+json", "txt", F::Text},
    {"application/xml", "txt", F::Text},
    {"text/xml", "txt", F::Text},
    {"text/vtt", "txt", F::Text},
}};

const KeyRow *rowOfType(std::string_view type) {
    const auto found = std::ranges::find_if(kByType, [type](const KeyRow &row) {
        const bool isWhole = row.extension.back() != '/' && row.extension.back() != '-';
        return isWhole ? equalsNoCase(row.extension, type) : startsWithNoCase(type, row.extension);
    });
    return found == kByType.end() ? nullptr : &*found;
}

bool isOfTodaysBrowsers(const RecordKind *kind) {
    return kind && kind->group == RecordGroup::cache && kind->family &&
           (kind->family->engine == Engine::chromium || kind->family->engine == Engine::gecko);
}

template <std::size_t N>
const KeyRow *rowOf(const std::array<KeyRow, N> &rows, std::string_view word) {
    const auto found = std::find_if(rows.begin(), rows.end(), [word](const KeyRow &row) {
        return equalsNoCase(row.extension, word);
    });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

std::string_view iconKey(const IconFacts &facts) {
    if (facts.isHistory || facts.isBookmark)
        return "history";
    const RecordKind *kind = recordKind(facts.cacheType);
    if (kind && !kind->icon.empty())
        return kind->icon;
    if (facts.isCookie || groupOf(facts.cacheType) == RecordGroup::cookies ||
        containsNoCase(facts.category, "cookie"))
        return "cookie";
    // The first versions of these caches leave the type empty.
    const std::string_view type = isOfTodaysBrowsers(kind) ? facts.mimeType : std::string_view();
    if (const KeyRow *row = rowOfType(type))
        return row->key;
    if (const KeyRow *row = rowOf(kByExtension, facts.extension))
        return row->key;
    if (const KeyRow *row = rowOf(kByCategory, facts.category))
        return row->key;
    return equalsNoCase(type, "text/plain") ? "txt" : ""; // servers say so of what they don't know
}

IconFamily iconFamily(std::string_view key) {
    if (key == "history")
        return F::History;
    if (key == "cookie")
        return F::Cookie;
    if (key == "font")
        return F::Font;
    const auto hasKey = [key](const KeyRow &row) { return row.key == key; };
    if (const auto at = std::find_if(kByCategory.begin(), kByCategory.end(), hasKey);
        at != kByCategory.end())
        return at->family;
    const auto at = std::find_if(kByExtension.begin(), kByExtension.end(), hasKey);
    return at == kByExtension.end() ? F::Unknown : at->family;
}

std::string_view familyName(IconFamily family) {
    static constexpr std::array<std::string_view, 20> kNames = {
        "unknown", "history",     "cookie",     "text",         "picture",  "script", "stylesheet",
        "audio",   "spreadsheet", "document",   "presentation", "database", "video",  "animation",
        "archive", "program",     "disc-image", "pdf",          "web-page", "font"};
    return kNames.at(static_cast<std::size_t>(family));
}

} // namespace nv
