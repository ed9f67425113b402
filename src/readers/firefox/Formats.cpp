#include "readers/firefox/Formats.h"

#include "base/Text.h"
#include "readers/Candidate.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/Options.h"
#include "readers/firefox/cache/CacheBody.h"
#include "readers/firefox/cache/CacheParse.h"
#include "readers/firefox/mork/MorkHistory.h"
#include "readers/firefox/profile/Cookies.h"
#include "readers/firefox/profile/Places.h"
#include "readers/sqlite/SchemaHead.h"

namespace nv {

namespace {

using enum HistoryFileType;

constexpr std::string_view kHistoryMask = "history*.dat;places*.sqlite";

constexpr const RecordKind *kCacheKinds[] = {&kFirefoxCache, &kFirefoxCacheRemnant};
constexpr const RecordKind *kMorkKinds[] = {&kFirefox2History};
constexpr const RecordKind *kPlacesKinds[] = {&kFirefox3History, &kFirefoxVisit, &kFirefoxBookmark,
                                              &kFirefoxDownload};
constexpr const RecordKind *kCookieKinds[] = {&kFirefoxCookies};

constexpr HistoryFileType kFurtherCaches[] = {firefoxCacheByName};

bool isCache(const Candidate &file) {
    return nameHas(file, "_cache_map_");
}

/// Records of the later caches are of the same kinds.
bool isOfClassicCache(const UrlRecord &record) {
    return !record.HistoryVersion.starts_with("cache2") &&
           !record.HistoryVersion.starts_with("site cache");
}

/// Without verification Opera's global history would be taken by its name.
bool isMorkHistory(const Candidate &file) {
    return nameHas(file, "history") && file.extension == "dat" && !hasOperaHistoryName(file) &&
           contentHas(file, "<mdb:mork:z");
}

bool isPlaces(const Candidate &file) {
    return nameHas(file, "places") && file.extension == "sqlite";
}

/// Programs with libsoup, such as Epiphany, keep a file with the name and the table of Firefox's.
/// Firefox notes when a cookie was created; before version 4 it didn't, but numbered its schema.
bool isCookies(const Candidate &file) {
    if (file.name != "cookies.sqlite")
        return false;
    const auto schema = schemaHead(file);
    return !schema || schema->userVersion != 0 || !containsNoCase(schema->bytes, "moz_cookies") ||
           containsNoCase(schema->bytes, "creationTime");
}

} // namespace

constinit const Reader kFirefoxCacheFormat = {
    .type = firefoxCache,
    .key = "firefox-cache",
    .kind = "Firefox Cache",
    .option = &kFirefoxCacheOption,
    .mask = "_cache_map_*",
    .recognises = isCache,
    .read = parseFirefoxCache,
    .fetch = fetchFirefoxCacheBody,
    .kinds = kCacheKinds,
    .page = "firefox-cache",
    .cases = {"firefox-cache;firefox-cache-further", "_CACHE_MAP_",
              "firefox-cache/four-places-of-bodies"},
    .furtherTypes = kFurtherCaches,
    .isSourceOf = isOfClassicCache,
};

constinit const Reader kMorkHistoryFormat = {
    .type = morkHistory,
    .key = "firefox-mork-history",
    .kind = "Firefox2 History",
    .version = "2.0",
    .option = &kFirefoxHistoryOption,
    .mask = kHistoryMask,
    .recognises = isMorkHistory,
    .read = parseMorkFile,
    .kinds = kMorkKinds,
    .page = "firefox-mork-history",
    .cases = {"firefox-mork-history", "history.dat", "firefox-mork-history/two-pages"},
};

constinit const Reader kFirefox3HistoryFormat = {
    .type = firefox3History,
    .key = "firefox3-history",
    .kind = "Firefox3 History",
    .version = "3.0",
    .option = &kFirefoxHistoryOption,
    .mask = kHistoryMask,
    .recognises = isPlaces,
    .read = parseFirefox3HistoryFile,
    .kinds = kPlacesKinds,
    .page = "firefox3-history",
    .cases = {"firefox3-history;firefox-places", "places.sqlite",
              "firefox-places/every-further-row"},
};

constinit const Reader kFirefoxCookiesFormat = {
    .type = firefoxCookies,
    .key = "firefox-cookies",
    .kind = "Firefox Cookies",
    .version = "3.0",
    .option = &kFirefoxCookiesOption,
    .mask = "cookies.sqlite",
    .recognises = isCookies,
    .read = parseFirefoxCookiesFile,
    .kinds = kCookieKinds,
    .page = "firefox-cookies",
    .cases = {"firefox-cookies", "cookies.sqlite", "firefox-cookies/three-cookies"},
};

} // namespace nv
