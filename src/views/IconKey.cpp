#include "views/IconKey.h"

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
    if (const KeyRow *row = rowOf(kByExtension, facts.extension))
        return row->key;
    if (const KeyRow *row = rowOf(kByCategory, facts.category))
        return row->key;
    return {};
}

IconFamily iconFamily(std::string_view key) {
    if (key == "history")
        return F::History;
    if (key == "cookie")
        return F::Cookie;
    const auto hasKey = [key](const KeyRow &row) { return row.key == key; };
    if (const auto at = std::find_if(kByCategory.begin(), kByCategory.end(), hasKey);
        at != kByCategory.end())
        return at->family;
    const auto at = std::find_if(kByExtension.begin(), kByExtension.end(), hasKey);
    return at == kByExtension.end() ? F::Unknown : at->family;
}

std::string_view familyName(IconFamily family) {
    static constexpr std::array<std::string_view, 19> kNames = {
        "unknown", "history",     "cookie",     "text",         "picture",  "script", "stylesheet",
        "audio",   "spreadsheet", "document",   "presentation", "database", "video",  "animation",
        "archive", "program",     "disc-image", "pdf",          "web-page"};
    return kNames.at(static_cast<std::size_t>(family));
}

} // namespace nv
