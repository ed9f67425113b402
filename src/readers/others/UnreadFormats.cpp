// WebKit cache = "Records": <40 hex of the partition>: folder of a kind: <40 hex>{...}
// record       = version:u32le ...

#include "readers/others/UnreadFormats.h"

#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/FolderLayout.h"
#include "readers/SourceOption.h"
#include "readers/sqlite/SchemaTables.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr SourceOption kOthers = {"chkOtherBrowsers", RecordGroup::other, nullptr,
                                  "Other browsers"};
constexpr std::size_t kDigits = 40; // of SHA-1

bool isWebKitCache(const Candidate &file) {
    constexpr std::uint32_t kLastVersion = 99;
    if (!isHexName(file.name, kDigits) || !isHexName(folderName(file, 2), kDigits) ||
        folderName(file, 3) != "records")
        return false;
    if (!file.verifySignatures)
        return true;
    const std::uint32_t version = file.head.has(0, 4) ? file.head.u32le(0) : 0;
    return version >= 1 && version <= kLastVersion;
}

/// "Version 17", with the bodies in its folder "Blobs".
fs::path webKitCacheOf(const Candidate &file) {
    return folderAbove(file, 4);
}

bool isEpiphanyHistory(const Candidate &file) {
    return file.name.starts_with("ephy-history") && hasTables(file, {"hosts", "urls", "visits"});
}

/// Firefox's, which has a table of the same name, is taken before it.
bool isEpiphanyCookies(const Candidate &file) {
    return file.verifySignatures && file.name == "cookies.sqlite" &&
           hasTables(file, {"moz_cookies"});
}

bool isFalkonHistory(const Candidate &file) {
    return file.name == "browsedata.db" && hasTables(file, {"history"});
}

/// Samsung's, Firefox's own until 2020, and the one that came with Android.
bool isAndroidBrowser(const Candidate &file) {
    constexpr auto kNames = std::to_array<std::string_view>(
        {"browser.db", "browser2.db", "sbrowser.db", "sbrowser2.db"});
    if (std::ranges::find(kNames, file.name) == kNames.end())
        return false;
    if (!file.verifySignatures)
        return true;
    const auto tables = schemaTables(file);
    return tables.contains("bookmarks") || tables.contains("history");
}

} // namespace

constinit const Reader kWebKitCacheFormat = {
    .type = HistoryFileType{86},
    .key = "webkit-cache",
    .kind = "WebKit disk cache",
    .option = &kOthers,
    .mask = "????????????????????????????????????????",
    .recognises = isWebKitCache,
    .page = "not-read-yet",
    .artefact = webKitCacheOf,
    .isBeyondClassic = true,
};

constinit const Reader kEpiphanyHistoryFormat = {
    .type = HistoryFileType{87},
    .key = "epiphany-history",
    .kind = "Epiphany history",
    .option = &kOthers,
    .mask = "ephy-history*.db",
    .recognises = isEpiphanyHistory,
    .page = "not-read-yet",
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kEpiphanyCookiesFormat = {
    .type = HistoryFileType{88},
    .key = "epiphany-cookies",
    .kind = "Cookies of Epiphany or another program with libsoup",
    .option = &kOthers,
    .mask = "cookies.sqlite",
    .recognises = isEpiphanyCookies,
    .page = "not-read-yet",
    .isBeyondClassic = true,
};

constinit const Reader kFalkonHistoryFormat = {
    .type = HistoryFileType{89},
    .key = "falkon-history",
    .kind = "Falkon history",
    .option = &kOthers,
    .mask = "browsedata.db",
    .recognises = isFalkonHistory,
    .page = "not-read-yet",
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kAndroidBrowserFormat = {
    .type = HistoryFileType{90},
    .key = "android-browser",
    .kind = "Database of a browser of Android",
    .option = &kOthers,
    .mask = "browser.db;browser2.db;SBrowser.db;SBrowser2.db",
    .recognises = isAndroidBrowser,
    .page = "not-read-yet",
    .form = &kDatabaseForm,
    .isBeyondClassic = true,
};

} // namespace nv
