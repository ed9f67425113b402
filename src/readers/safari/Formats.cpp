#include "readers/safari/Formats.h"

#include "base/Text.h"
#include "readers/Candidate.h"
#include "readers/safari/Cache.h"
#include "readers/safari/Cookies.h"
#include "readers/safari/History.h"
#include "readers/safari/Kinds.h"
#include "readers/safari/Options.h"
#include "readers/sqlite/SchemaHead.h"

namespace nv {

namespace {

using enum HistoryFileType;

constexpr const RecordKind *kCacheKinds[] = {&kSafariCache};
constexpr const RecordKind *kHistoryKinds[] = {&kSafariHistory};
constexpr const RecordKind *kCookieKinds[] = {&kSafariCookies};

/// Many programs call a database so; Safari's has tables of its own. Where they can't be told, as
/// in a damaged file, the name decides.
bool isCache(const Candidate &file) {
    if (!nameHas(file, "cache") || file.extension != "db")
        return false;
    const auto schema = schemaHead(file);
    return !schema || containsNoCase(schema->bytes, "cfurl_cache");
}

bool isHistory(const Candidate &file) {
    return nameHas(file, "history") && file.extension == "plist";
}

bool isCookies(const Candidate &file) {
    return file.name == "cookies.plist";
}

/// Later browsers keep them as a database in a folder of its own, "GPUCache/.../cache.db".
bool liesWithShaders(const Candidate &file) {
    return isShaderFolder(file.file.parent_path().parent_path());
}

} // namespace

constinit const Reader kSafariCacheFormat = {
    .type = safariCache,
    .key = "safari-cache",
    .kind = "Safari Cache",
    .version = "3.0",
    .option = &kSafariCacheOption,
    .mask = "cache*.db",
    .recognises = isCache,
    .read = parseSafariCacheFile,
    .fetch = fetchSafariBody,
    .kinds = kCacheKinds,
    .page = "safari-cache",
    .cases = {"safari-cache", "Cache.db", "safari-cache/bodies-apart-and-in-files"},
    .holdsShaders = liesWithShaders,
};

constinit const Reader kSafariHistoryFormat = {
    .type = safariHistory,
    .key = "safari-history",
    .kind = "Safari History",
    .version = "3.0",
    .option = &kSafariHistoryOption,
    .mask = "history*.plist",
    .recognises = isHistory,
    .read = parseSafariHistoryFile,
    .kinds = kHistoryKinds,
    .page = "safari-history",
    .cases = {"safari-history", "History.plist", "safari-history/three-pages"},
};

constinit const Reader kSafariCookiesFormat = {
    .type = safariCookies,
    .key = "safari-cookies",
    .kind = "Safari Cookies",
    .version = "3.0",
    .option = &kSafariCookiesOption,
    .mask = "cookies.plist",
    .recognises = isCookies,
    .read = parseSafariCookiesFile,
    .kinds = kCookieKinds,
    .page = "safari-history",
    .cases = {"safari-cookies", "Cookies.plist", "safari-cookies/gives-no-rows"},
};

} // namespace nv
