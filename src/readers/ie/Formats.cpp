#include "readers/ie/Formats.h"

#include "base/Files.h"
#include "readers/Candidate.h"
#include "readers/Limits.h"
#include "readers/SourceOption.h"
#include "readers/ie/Cookies.h"
#include "readers/ie/Index.h"
#include "readers/ie/Kinds.h"

namespace nv {

namespace {

using enum HistoryFileType;

/// In an index: how many cache folders it has, lowest byte. 0-based.
constexpr std::uint64_t kFolderCountAt = 72;

constexpr SourceOption kCookies = {"chkCookiesIE", RecordGroup::cookies,
                                   &families::internetExplorer, "", 15};
constexpr SourceOption kHistory = {"chkHistoryIE", RecordGroup::history,
                                   &families::internetExplorer, "", 10};
constexpr SourceOption kCache = {"chkCacheIE", RecordGroup::cache, &families::internetExplorer, "",
                                 2};
constexpr std::string_view kMask = "index*.dat";

// An index may turn out to be of another kind than it looked, and redirections in a history are
// records of the cache.
constexpr const RecordKind *kIndexKinds[] = {&kIEHistory, &kIEDaily, &kIEWeekly, &kIECache,
                                             &kIERemnant};
constexpr const RecordKind *kCookieKinds[] = {&kIECookies, &kIERemnant};

/// A daily and a weekly index, and one that was named on the command line.
constexpr HistoryFileType kFurtherHistories[] = {ieDaily, ieWeekly, ieIndexByCommandLine};

bool isIndex(const Candidate &file) {
    return hasIndexName(file) && contentHas(file, "Client UrlCache");
}

/// An index with folders is a cache index; one without lists a history, whatever its own folder is
/// called.
bool hasCacheFolders(ByteView head) {
    return head.has(kFolderCountAt, 1) && head.u8(kFolderCountAt) != 0;
}

bool isCookies(const Candidate &file) {
    return isIndex(file) && pathHas(file, "/cookies/");
}

/// Takes every index when contents aren't verified: the name can't tell history from cache.
bool isHistory(const Candidate &file) {
    return isIndex(file) && (!file.verifySignatures || !hasCacheFolders(file.head));
}

bool isCache(const Candidate &file) {
    return isIndex(file) && hasCacheFolders(file.head);
}

/// A cache that is taken by its name alone, or by itself, passes for a history.
std::string warningOnHistory(const std::filesystem::path &file, const Evidence &evidence) {
    const Bytes head = evidence.head(file, limits::kHeadBytes);
    if (!hasCacheFolders(ByteView(head)))
        return {};
    return "read as a history, but it lists cache folders as a cache does: what is called \"Last "
           "Visited\" here is a date of the server's, and cached files are not looked for. Import "
           "its folder with file signatures verified";
}

} // namespace

bool hasNameOfRecoveredIndex(const Candidate &file) {
    return nameHas(file, "-uc-index.dat");
}

bool hasIndexName(const Candidate &file) {
    return nameHas(file, "index") && file.extension == "dat" && !hasNameOfRecoveredIndex(file);
}

// Without a mask, cookies are met only where history or cache is looked for too.
constinit const Reader kIECookiesFormat = {
    .type = ieCookies,
    .key = "ie-cookies",
    .kind = "IE Cookies",
    .option = &kCookies,
    .recognises = isCookies,
    .read = parseIECookies,
    .kinds = kCookieKinds,
    .page = "ie-cookies",
    .cases = {"ie-cookies;ie-cookies-further", "index.dat", "ie-cookies/texts-beside-the-index"},
};

constinit const Reader kIEHistoryFormat = {
    .type = ieHistory,
    .key = "ie-history",
    .kind = "IE History",
    .option = &kHistory,
    .mask = kMask,
    .recognises = isHistory,
    .read = parseIECacheFile,
    .kinds = kIndexKinds,
    .page = "ie-index",
    .cases = {"ie-index;ie-index-further", "index.dat", "ie-index/main-history"},
    .furtherTypes = kFurtherHistories,
    .warningOn = warningOnHistory,
};

constinit const Reader kIECacheFormat = {
    .type = ieCache,
    .key = "ie-cache",
    .kind = "IE Cache",
    .option = &kCache,
    .mask = kMask,
    .recognises = isCache,
    .read = parseIECacheFile,
    .kinds = kIndexKinds,
    .page = "ie-index",
    .cases = {"ie-index;ie-index-further", "index.dat", "ie-index/cache-with-files"},
};

} // namespace nv
