// block cache  = "index": magic ... without "data_0" | "data_1": magic ... without such an "index"
// Simple cache = "index": magic ... | <16 hex>_0, _1, _s: magic ...   beside "index-dir"
// SQL cache    = "index": "SQLCacheTruncate" ... | "sqldb0", "sqldb1" ...: tables resources, blobs

#include "readers/chrome/CacheFormats.h"

#include "readers/Candidate.h"
#include "readers/FolderLayout.h"
#include "readers/chrome/Cache.h"
#include "readers/chrome/CacheBody.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/Options.h"
#include "readers/chrome/SimpleCache.h"
#include "readers/chrome/SqlCache.h"
#include "readers/sqlite/SchemaTables.h"

#include <algorithm>

namespace nv {

namespace {

constexpr std::string_view kSimpleMagic = "\x30\x5C\x72\xA7\x1B\x6D\xFB\xFC";

constexpr std::string_view kBlockMagic = "\xC3\xCA\x03\xC1";
constexpr std::string_view kBlockFileMagic = "\xC3\xCA\x04\xC1";

constexpr const RecordKind *kKinds[] = {&kChromeCache, &kChromeSiteCache, &kChromeCacheRemnant};

bool isEntryOfSimpleCache(const Candidate &file) {
    constexpr std::size_t kDigits = 16;
    const std::string_view name = file.name;
    return name.size() == kDigits + 2 && isHexName(name.substr(0, kDigits), kDigits) &&
           (name.ends_with("_0") || name.ends_with("_s"));
}

bool isSimpleCache(const Candidate &file) {
    if (isEntryOfSimpleCache(file))
        return beginsWith(file, kSimpleMagic) && !isShaderFolder(ownFolder(file));
    return file.name == "index" && beginsWith(file, kSimpleMagic) &&
           (file.verifySignatures || hasBeside(file, "index-dir"));
}

/// Neither it nor the index that it leads to is taken then.
bool hasUnreadFirst(const Candidate &file, const std::filesystem::path &first) {
    return file.unread &&
           std::ranges::find(*file.unread, first, &UnreadPlace::path) != file.unread->end();
}

/// With its first block file it is found by that one. Entries lie in the second, and can be found
/// there with no index, with one that can't be read, or with something else of its name.
bool isPartOfBlockCache(const Candidate &file) {
    if (!file.verifySignatures)
        return false;
    const auto first = file.evidence->find(ownFolder(file), "data_0");
    if (file.name == "index")
        return beginsWith(file, kBlockMagic) && !first;
    if (file.name != "data_1" || !beginsWith(file, kBlockFileMagic))
        return false;
    if (first && hasUnreadFirst(file, *first))
        return true;
    const auto index = file.evidence->find(ownFolder(file), "index");
    if (first || !index)
        return !index;
    const Bytes head = file.evidence->head(*index, kBlockMagic.size());
    return ByteView(head).raw() != kBlockMagic;
}

bool isSqlCache(const Candidate &file) {
    if (file.name == "index")
        return beginsWith(file, "SQLCacheTruncate") &&
               (file.verifySignatures || hasBeside(file, "sqldb0"));
    return file.name.starts_with("sqldb") && hasTables(file, {"resources", "blobs"});
}

bool isFromSqlCache(const UrlRecord &record) {
    return record.HistoryVersion.starts_with("SQL");
}

bool isFromSimpleCache(const UrlRecord &record) {
    return record.HistoryVersion.starts_with("Simple");
}

bool liesWithShaders(const Candidate &file) {
    return isShaderFolder(ownFolder(file));
}

} // namespace

constinit const Reader kChromiumSimpleCacheFormat = {
    .type = HistoryFileType{60},
    .key = "chrome-simple-cache",
    .kind = "Chromium Simple cache",
    .option = &kChromeCacheOption,
    .mask = "index;????????????????_0;????????????????_s",
    .recognises = isSimpleCache,
    .read = parseChromiumSimpleCache,
    .fetch = fetchSimpleBody,
    .kinds = kKinds,
    .page = "chromium-simple-cache",
    .cases = {"chromium-simple-cache", "6d7c73ae863bc13b_0", "chromium-simple-cache/every-kind"},
    .artefact = ownFolder,
    .holdsShaders = liesWithShaders,
    .isSourceOf = isFromSimpleCache,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumSqlCacheFormat = {
    .type = HistoryFileType{61},
    .key = "chrome-sql-cache",
    .kind = "Chromium SQL cache",
    .option = &kChromeCacheOption,
    .mask = "index;sqldb?;sqldb??",
    .recognises = isSqlCache,
    .read = parseChromiumSqlCache,
    .fetch = fetchSqlBody,
    .kinds = kKinds,
    .page = "chromium-sql-cache",
    .cases = {"chromium-sql-cache", "sqldb0", "chromium-sql-cache/three-parts"},
    .artefact = ownFolder,
    .isSourceOf = isFromSqlCache,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumLoneIndexFormat = {
    .type = HistoryFileType{62},
    .key = "chrome-lone-index",
    .kind = "Chromium block cache of which files are missing",
    .option = &kChromeCacheOption,
    .mask = "index;data_1",
    .recognises = isPartOfBlockCache,
    .read = parseChromeCache,
    .fetch = fetchChromeBody,
    .kinds = kKinds,
    .page = "chromium-block-cache",
    .cases = {"chromium-block-cache-parts", "data_1", "chromium-block-cache-parts/no-index"},
    .holdsShaders = liesWithShaders,
    .isBeyondClassic = true,
};

} // namespace nv
