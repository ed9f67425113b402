#include "readers/firefox/cache/Cache2Formats.h"

#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/FolderLayout.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/Options.h"
#include "readers/firefox/cache/Cache2.h"
#include "readers/firefox/cache/Cache2Record.h"
#include "readers/firefox/cache/SiteCache.h"
#include "readers/sqlite/SchemaTables.h"

#include <algorithm>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr const RecordKind *kKinds[] = {&kFirefoxCache, &kFirefoxCacheRemnant};
constexpr const RecordKind *kSiteKinds[] = {&kFirefoxSiteCache, &kFirefoxCacheRemnant};

std::uint64_t bigEndian(ByteView bytes) {
    std::uint64_t number = 0;
    for (std::uint64_t at = 0; at < bytes.size(); ++at)
        number = number << 8 | bytes.u8(at);
    return number;
}

/// Whether its last bytes lead to metadata of a version that there is.
bool endsAsAnEntry(const Candidate &candidate) {
    constexpr std::uint64_t kWord = 4;
    constexpr std::uint64_t kChunk = std::uint64_t{256} << 10;
    constexpr std::uint64_t kLastVersion = 9;
    const EvidenceFile file = candidate.evidence->open(candidate.file);
    if (file.size() < 3 * kWord)
        return false;
    const auto wordAt = [&file](std::uint64_t at) {
        const Bytes bytes = file.read(at, kWord);
        return bigEndian(ByteView(bytes));
    };
    const std::uint64_t body = wordAt(file.size() - kWord);
    const std::uint64_t chunks = (body + kChunk - 1) / kChunk;
    const std::uint64_t at = body + kWord + 2 * chunks;
    if (at + 2 * kWord > file.size())
        return false;
    const std::uint64_t version = wordAt(at);
    return version >= 1 && version <= kLastVersion;
}

/// The browser gives them a number that it draws.
bool isNamedAsDoomed(const Candidate &file) {
    return folderName(file) == "doomed" &&
           std::ranges::all_of(file.name, [](char c) { return c >= '0' && c <= '9'; });
}

bool isCache2(const Candidate &file) {
    constexpr std::size_t kDigits = 40; // of SHA-1
    const bool isDoomed = isNamedAsDoomed(file);
    if (!isDoomed && !isHexName(file.name, kDigits))
        return false;
    return file.verifySignatures ? endsAsAnEntry(file) : isDoomed || folderName(file) == "entries";
}

bool hasEntries(const Candidate &file, const fs::path &cache) {
    return file.evidence->kindOf(cache / "entries") == PlaceKind::folder;
}

/// Entries that were copied out on their own lie in any folder.
fs::path cacheOf(const Candidate &file) {
    const std::string folder = folderName(file);
    const fs::path above = folderAbove(file, 2);
    const bool isBelow = folder == "entries" || folder.starts_with("trash") ||
                         (folder == "doomed" && hasEntries(file, above));
    return isBelow ? above : folderAbove(file, 1);
}

bool isOfCache2(const UrlRecord &record) {
    return record.HistoryVersion.starts_with("cache2");
}

bool isSiteCache(const Candidate &file) {
    return nameHas(file, "caches") && file.extension == "sqlite" &&
           hasTables(file, {"caches", "entries", "response_headers"});
}

bool isOfSiteCache(const UrlRecord &record) {
    return record.HistoryVersion.starts_with("site cache");
}

} // namespace

constinit const Reader kFirefoxCache2Format = {
    .type = HistoryFileType{70},
    .key = "firefox-cache2",
    .kind = "Firefox cache2",
    .version = "cache2",
    .option = &kFirefoxCacheOption,
    .mask = "????????????????????????????????????????;???????;????????;?????????;??????????",
    .recognises = isCache2,
    .read = parseFirefoxCache2,
    .fetch = fetchFirefoxCache2Body,
    .kinds = kKinds,
    .page = "firefox-cache2",
    .cases = {"firefox-cache2", "017CFFF36DCF40D670C37192ACB298BAE9BF178D",
              "firefox-cache2/one-page"},
    .artefact = cacheOf,
    .isSourceOf = isOfCache2,
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxSiteCacheFormat = {
    .type = HistoryFileType{73},
    .key = "firefox-site-cache",
    .kind = "Firefox site cache",
    .version = "site cache",
    .option = &kFirefoxCacheOption,
    .mask = "caches*.sqlite",
    .recognises = isSiteCache,
    .read = parseFirefoxSiteCache,
    .fetch = fetchFirefoxSiteBody,
    .kinds = kSiteKinds,
    .page = "firefox-site-cache",
    .cases = {"firefox-site-cache", "caches.sqlite", "firefox-site-cache/two-caches"},
    .form = &kTablesForm,
    .isSourceOf = isOfSiteCache,
    .isBeyondClassic = true,
};

} // namespace nv
