// LevelDB      = "CURRENT": "MANIFEST-" number | without a sound one "MANIFEST-" number, *.ldb
// session      = "SNSS" ...

#include "readers/chrome/UnreadFormats.h"

#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/FolderLayout.h"
#include "readers/chrome/Options.h"
#include "readers/sqlite/SchemaTables.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::string_view kManifest = "MANIFEST-";

bool hasSoundCurrent(const Candidate &file) {
    const auto current = file.evidence->find(ownFolder(file), "CURRENT");
    if (!current)
        return false;
    const Bytes begin = file.evidence->head(*current, kManifest.size());
    return ByteView(begin).raw() == kManifest;
}

bool isTable(const Candidate &file) {
    constexpr std::string_view kEnd = "\x57\xFB\x80\x8B\x24\x75\x47\xDB";
    const EvidenceFile table = file.evidence->open(file.file);
    if (table.size() < kEnd.size())
        return false;
    const Bytes end = table.read(table.size() - kEnd.size(), kEnd.size());
    return ByteView(end).raw() == kEnd;
}

/// By the files that it leads to, where the first of all is missing or damaged.
bool isOfStoreWithoutCurrent(const Candidate &file) {
    const bool isManifest =
        file.name.starts_with("manifest-") && file.name.find('.') == std::string::npos;
    const bool isNamed = isManifest || file.extension == "ldb";
    return file.verifySignatures && isNamed && !hasSoundCurrent(file) &&
           (isManifest ? hasBeside(file, "CURRENT") || hasBeside(file, "LOCK") : isTable(file));
}

/// Another store that begins so isn't a browser's; it keeps an "IDENTITY" beside.
bool isLevelDB(const Candidate &file) {
    const bool isCurrent = file.name == "current" && beginsWith(file, kManifest);
    return (isCurrent || isOfStoreWithoutCurrent(file)) && !hasBeside(file, "IDENTITY");
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

constinit const Reader kLevelDBFormat = {
    .type = HistoryFileType{63},
    .key = "leveldb",
    .kind = "LevelDB store",
    .option = &kChromeOtherOption,
    .mask = "CURRENT;MANIFEST-*;*.ldb",
    .recognises = isLevelDB,
    .page = "not-read-yet",
    .form = &kStoreForm,
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
    .form = &kSessionForm,
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
    .form = &kDatabaseForm,
    .isBeyondClassic = true,
};

} // namespace nv
