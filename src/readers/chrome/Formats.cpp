#include "readers/chrome/Formats.h"

#include "readers/Candidate.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/Options.h"
#include "readers/chrome/cache/Cache.h"
#include "readers/chrome/cache/CacheBody.h"
#include "readers/chrome/profile/Cookies.h"

#include <optional>

namespace nv {

namespace {

using enum HistoryFileType;

constexpr const RecordKind *kCacheKinds[] = {&kChromeCache, &kChromeSiteCache,
                                             &kChromeCacheRemnant};
constexpr const RecordKind *kCookieKinds[] = {&kChromeCookies};

/// Chrome's index beside the block file. Names may have lost their case on the way here.
std::optional<std::filesystem::path> indexBeside(const Candidate &file) {
    return file.evidence->find(file.file.parent_path(), "index");
}

bool isCache(const Candidate &file) {
    return file.name == "data_0" && indexBeside(file).has_value();
}

bool isCookies(const Candidate &file) {
    return file.name == "cookies" && pathHas(file, "/chrome/");
}

/// The cache is known by its first block file and read through the index.
std::filesystem::path indexOf(const Candidate &file) {
    return indexBeside(file).value_or(file.file);
}

/// Bodies of the later caches are fetched in other ways.
bool isFromBlockCache(const UrlRecord &record) {
    return !record.HistoryVersion.starts_with("Simple") &&
           !record.HistoryVersion.starts_with("SQL");
}

bool liesWithShaders(const Candidate &file) {
    return isShaderFolder(file.file.parent_path());
}

} // namespace

constinit const Reader kChromeCacheFormat = {
    .type = chromeCache,
    .key = "chrome-cache",
    .kind = "Chrome Cache",
    .version = "1.0",
    .option = &kChromeCacheOption,
    .mask = "data_0",
    .recognises = isCache,
    .read = parseChromeCache,
    .fetch = fetchChromeBody,
    .kinds = kCacheKinds,
    .page = "chrome-cache",
    .cases = {"chrome-cache;chrome-cache-further;chromium-block-cache", "index",
              "chrome-cache/four-kinds-of-bodies"},
    .artefact = indexOf,
    .holdsShaders = liesWithShaders,
    .isSourceOf = isFromBlockCache,
};

constinit const Reader kChromeCookiesFormat = {
    .type = chromeCookies,
    .key = "chrome-cookies",
    .kind = "Chrome Cookies",
    .version = "1.0",
    .option = &kChromeCookiesOption,
    .mask = "Cookies",
    .recognises = isCookies,
    .read = parseChromeCookiesFile,
    .kinds = kCookieKinds,
    .page = "chrome-cookies",
    .cases = {"chrome-cookies", "Cookies", "chrome-cookies/three-cookies"},
};

} // namespace nv
