#include "readers/firefox/profile/ProfileFormats.h"

#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/Options.h"
#include "readers/firefox/profile/DownloadsFile.h"
#include "readers/firefox/profile/Favicons.h"
#include "readers/firefox/profile/FormHistory.h"
#include "readers/firefox/profile/Logins.h"
#include "readers/firefox/profile/Permissions.h"
#include "readers/sqlite/SchemaTables.h"

namespace nv {

namespace {

using enum HistoryFileType;

constexpr const RecordKind *kFormKinds[] = {&kFirefoxFormValue};
constexpr const RecordKind *kPermissionKinds[] = {&kFirefoxPermission};
constexpr const RecordKind *kLoginKinds[] = {&kFirefoxLogin, &kFirefoxPermission};
constexpr const RecordKind *kIconKinds[] = {&kFirefoxIcon};
constexpr const RecordKind *kDownloadKinds[] = {&kFirefoxDownload};

bool isDatabase(const Candidate &file, std::string_view name) {
    return nameHas(file, name) && file.extension == "sqlite";
}

bool isForms(const Candidate &file) {
    return isDatabase(file, "formhistory") && hasTables(file, {"moz_formhistory"});
}

bool isPermissions(const Candidate &file) {
    return isDatabase(file, "permissions") &&
           (hasTables(file, {"moz_perms"}) || hasTables(file, {"moz_hosts"}));
}

bool isLogins(const Candidate &file) {
    if (isDatabase(file, "signons"))
        return hasTables(file, {"moz_logins"});
    return nameHas(file, "logins") && file.extension == "json" && contentHas(file, "\"logins\"") &&
           contentHas(file, "\"nextId\"");
}

bool isFavicons(const Candidate &file) {
    return isDatabase(file, "favicons") && hasTables(file, {"moz_pages_w_icons"});
}

bool isDownloads(const Candidate &file) {
    return isDatabase(file, "downloads") && hasTables(file, {"moz_downloads"});
}

} // namespace

constinit const Reader kFirefoxFormsFormat = {
    .type = firefoxForms,
    .key = "firefox-forms",
    .kind = "Firefox Form History",
    .version = "3.0",
    .option = &kFirefoxOtherOption,
    .mask = "formhistory*.sqlite",
    .recognises = isForms,
    .read = parseFirefoxFormsFile,
    .kinds = kFormKinds,
    .page = "firefox-forms",
    .cases = {"firefox-forms", "formhistory.sqlite", "firefox-forms/three-values"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxPermissionsFormat = {
    .type = firefoxPermissions,
    .key = "firefox-permissions",
    .kind = "Firefox Permissions",
    .version = "3.0",
    .option = &kFirefoxOtherOption,
    .mask = "permissions*.sqlite",
    .recognises = isPermissions,
    .read = parseFirefoxPermissionsFile,
    .kinds = kPermissionKinds,
    .page = "firefox-permissions",
    .cases = {"firefox-permissions", "permissions.sqlite", "firefox-permissions/three-sites"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxLoginsFormat = {
    .type = firefoxLogins,
    .key = "firefox-logins",
    .kind = "Firefox Logins",
    .version = "3.0",
    .option = &kFirefoxOtherOption,
    .mask = "logins*.json;signons*.sqlite",
    .recognises = isLogins,
    .read = parseFirefoxLoginsFile,
    .kinds = kLoginKinds,
    .page = "firefox-logins",
    .cases = {"firefox-logins", "logins.json;signons.sqlite", "firefox-logins/two-sites"},
    .form = &kLoginsForm,
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxFaviconsFormat = {
    .type = firefoxFavicons,
    .key = "firefox-favicons",
    .kind = "Firefox Favicons",
    .version = "55.0",
    .option = &kFirefoxOtherOption,
    .mask = "favicons*.sqlite",
    .recognises = isFavicons,
    .read = parseFirefoxFaviconsFile,
    .kinds = kIconKinds,
    .page = "firefox-favicons",
    .cases = {"firefox-favicons", "favicons.sqlite", "firefox-favicons/page-left-the-history"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kFirefoxDownloadsFormat = {
    .type = firefoxDownloads,
    .key = "firefox-downloads",
    .kind = "Firefox Downloads",
    .version = "3.0",
    .option = &kFirefoxHistoryOption,
    .mask = "downloads*.sqlite",
    .recognises = isDownloads,
    .read = parseFirefoxDownloadsFile,
    .kinds = kDownloadKinds,
    .page = "firefox-downloads",
    .cases = {"firefox-downloads", "downloads.sqlite", "firefox-downloads/two-downloads"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

} // namespace nv
