#include "readers/opera/Formats.h"

#include "readers/Candidate.h"
#include "readers/SourceOption.h"
#include "readers/opera/Cache.h"
#include "readers/opera/Cookies.h"
#include "readers/opera/History.h"
#include "readers/opera/Kinds.h"

namespace nv {

namespace {

using enum HistoryFileType;

constexpr SourceOption kCache = {"chkCacheOpera", RecordGroup::cache, &families::opera, "", 3};
constexpr SourceOption kHistory = {"chkHistoryOpera", RecordGroup::history, &families::opera, "",
                                   6};
constexpr SourceOption kCookies = {"chkCookiesOpera", RecordGroup::cookies, &families::opera, "",
                                   12};

constexpr const RecordKind *kCacheKinds[] = {&kOperaCache};
constexpr const RecordKind *kHistoryKinds[] = {&kOperaHistory};
constexpr const RecordKind *kCookieKinds[] = {&kOperaCookies};

bool isCache(const Candidate &file) {
    return nameHas(file, "dcache4");
}

bool isCookies(const Candidate &file) {
    return file.name == "cookies4.dat";
}

} // namespace

constinit const Reader kOperaCacheFormat = {
    .type = operaCache,
    .key = "opera-cache",
    .kind = "Opera Cache",
    .version = "9.0",
    .option = &kCache,
    .mask = "dcache4*.url",
    .recognises = isCache,
    .read = ParseOperaCache,
    .kinds = kCacheKinds,
    .page = "opera-cache",
    .cases = {"opera-cache", "dcache4.url", "opera-cache/files-beside-the-index"},
};

constinit const Reader kOperaHistoryFormat = {
    .type = operaHistory,
    .key = "opera-history",
    .kind = "Opera History",
    .version = "9.0",
    .option = &kHistory,
    .mask = "global*.dat;download.dat;type_history.xml;typed_history.xml",
    .recognises = hasOperaHistoryName,
    .read = ParseOperaHistoryFile,
    .kinds = kHistoryKinds,
    .page = "opera-history",
    .cases = {"opera-history;opera-history-typed", "global_history.dat;typed_history.xml",
              "opera-history/three-visits"},
};

constinit const Reader kOperaCookiesFormat = {
    .type = operaCookies,
    .key = "opera-cookies",
    .kind = "Opera Cookies",
    .version = "9.0",
    .option = &kCookies,
    .mask = "cookies4.dat",
    .recognises = isCookies,
    .read = ParseOperaCookiesFile,
    .kinds = kCookieKinds,
    .page = "opera-history",
    .cases = {"opera-cookies", "cookies4.dat", "opera-cookies/gives-no-rows"},
};

} // namespace nv
