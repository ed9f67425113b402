// Simple cache = "index": magic ... | <16 hex>_0, _1, _s: magic ...   beside "index-dir"
// SQL cache    = "index": "SQLCacheTruncate" ... | "sqldb0", "sqldb1" ...: tables resources, blobs
// block cache  = "index": magic version:u32@4 ...   without its "data_0", from which it is known
// LevelDB      = "CURRENT": "MANIFEST-" number
// session      = "SNSS" ...

#include "readers/chrome/UnreadFormats.h"

#include "readers/Candidate.h"
#include "readers/FolderLayout.h"
#include "readers/chrome/Options.h"
#include "readers/sqlite/SchemaTables.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::string_view kSimpleMagic = "\x30\x5C\x72\xA7\x1B\x6D\xFB\xFC";
constexpr std::string_view kBlockMagic = "\xC3\xCA\x03\xC1";

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

bool liesWithShaders(const Candidate &file) {
    return isShaderFolder(ownFolder(file));
}

bool isSqlCache(const Candidate &file) {
    if (file.name == "index")
        return beginsWith(file, "SQLCacheTruncate") &&
               (file.verifySignatures || hasBeside(file, "sqldb0"));
    return file.name.starts_with("sqldb") && hasTables(file, {"resources", "blobs"});
}

/// With its first block file it is the classic rules' own, which tell of later versions.
bool isLoneIndex(const Candidate &file) {
    return file.verifySignatures && file.name == "index" && beginsWith(file, kBlockMagic) &&
           !file.evidence->find(ownFolder(file), "data_0");
}

/// Another store that begins so isn't a browser's; it keeps an "IDENTITY" beside.
bool isLevelDB(const Candidate &file) {
    return file.name == "current" && beginsWith(file, "MANIFEST-") && !hasBeside(file, "IDENTITY");
}

bool isSession(const Candidate &file) {
    constexpr auto kNames =
        std::to_array<std::string_view>({"session_", "tabs_", "apps_", "current session",
                                         "current tabs", "last session", "last tabs"});
    return file.verifySignatures ? beginsWith(file, "SNSS")
                                 : std::ranges::any_of(kNames, [&file](std::string_view begin) {
                                       return file.name.starts_with(begin);
                                   });
}

/// What tells of sites beside the history, each by its tables.
struct SiteData {
    std::string_view name;
    std::string_view table;
};
constexpr auto kSiteData = std::to_array<SiteData>({
    {"dips", "bounces"},
    {"media history", "playback"},
    {"quotamanager", "buckets"},
    {"reporting and nel", "nel_policies"},
    {"trust tokens", "trust_tokens_toplevel_config"},
    {"db", "dictionaries"}, // of folder "Shared Dictionary"
});

bool isSiteData(const Candidate &file) {
    const auto known = std::ranges::find(kSiteData, file.name, &SiteData::name);
    const bool isNamed =
        known != kSiteData.end() && (file.name != "db" || folderName(file) == "shared dictionary");
    return isNamed && hasTables(file, {known->table});
}

} // namespace

constinit const Reader kChromiumSimpleCacheFormat = {
    .type = HistoryFileType{60},
    .key = "chrome-simple-cache",
    .kind = "Chromium Simple cache",
    .option = &kChromeCacheOption,
    .mask = "index;????????????????_0;????????????????_s",
    .recognises = isSimpleCache,
    .page = "not-read-yet",
    .artefact = ownFolder,
    .holdsShaders = liesWithShaders,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumSqlCacheFormat = {
    .type = HistoryFileType{61},
    .key = "chrome-sql-cache",
    .kind = "Chromium SQL cache",
    .option = &kChromeCacheOption,
    .mask = "index;sqldb?;sqldb??",
    .recognises = isSqlCache,
    .page = "not-read-yet",
    .artefact = ownFolder,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumLoneIndexFormat = {
    .type = HistoryFileType{62},
    .key = "chrome-lone-index",
    .kind = "Chromium block cache without its first block file",
    .option = &kChromeCacheOption,
    .mask = "index",
    .recognises = isLoneIndex,
    .page = "not-read-yet",
    .holdsShaders = liesWithShaders,
    .isBeyondClassic = true,
};

constinit const Reader kLevelDBFormat = {
    .type = HistoryFileType{63},
    .key = "leveldb",
    .kind = "LevelDB store",
    .option = &kChromeOtherOption,
    .mask = "CURRENT",
    .recognises = isLevelDB,
    .page = "not-read-yet",
    .artefact = ownFolder,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumSessionFormat = {
    .type = HistoryFileType{64},
    .key = "chrome-session",
    .kind = "Chromium session",
    .option = &kChromeHistoryOption,
    .mask = "Session_*;Tabs_*;Apps_*;Current Session;Current Tabs;Last Session;Last Tabs",
    .recognises = isSession,
    .page = "not-read-yet",
    .isBeyondClassic = true,
};

constinit const Reader kChromiumSiteDataFormat = {
    .type = HistoryFileType{65},
    .key = "chrome-site-data",
    .kind = "Chromium's notes on sites",
    .option = &kChromeOtherOption,
    .mask = "DIPS;Media History;QuotaManager;Reporting and NEL;Trust Tokens;db",
    .recognises = isSiteData,
    .page = "not-read-yet",
    .isBeyondClassic = true,
};

} // namespace nv
