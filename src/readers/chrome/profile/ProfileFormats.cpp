#include "readers/chrome/profile/ProfileFormats.h"

#include "base/Text.h"
#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/Options.h"
#include "readers/chrome/profile/Bookmarks.h"
#include "readers/chrome/profile/Cookies.h"
#include "readers/chrome/profile/Logins.h"
#include "readers/chrome/profile/Settings.h"
#include "readers/chrome/profile/ValueCipher.h"
#include "readers/chrome/profile/WebData.h"
#include "readers/sqlite/SchemaTables.h"

#include <algorithm>

namespace nv {

namespace {

using enum HistoryFileType;

constexpr const RecordKind *kCookieKinds[] = {&kChromeCookies};
constexpr const RecordKind *kWebDataKinds[] = {&kChromeFormValue, &kChromeAddress, &kChromeCard,
                                               &kChromeSearchEngine};
constexpr const RecordKind *kLoginKinds[] = {&kChromeLogin};
constexpr const RecordKind *kBookmarkKinds[] = {&kChromeBookmark};
constexpr const RecordKind *kSettingsKinds[] = {&kChromeSiteSetting, &kChromeAccount};

bool hasName(const Candidate &file, std::string_view names) {
    const auto all = split(names, ';');
    return std::ranges::any_of(
        all, [&](std::string_view name) { return equalsNoCase(file.name, name); });
}

/// An object with one of the members; other programs write files of these names too.
bool isJsonWith(const Candidate &file, std::initializer_list<std::string_view> members) {
    if (!file.verifySignatures)
        return true;
    std::string_view text = file.head.raw();
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    return trim(text).starts_with('{') &&
           std::ranges::any_of(members, [text](std::string_view member) {
               return text.find(member) != std::string_view::npos;
           });
}

constexpr std::string_view kCookieNames = "Cookies;Extension Cookies;Safe Browsing Cookies";
constexpr std::string_view kWebDataNames = "Web Data;Account Web Data";
constexpr std::string_view kLoginNames = "Login Data;Login Data For Account";
constexpr std::string_view kBookmarkNames =
    "Bookmarks;Bookmarks.bak;Bookmarks.msbak;AccountBookmarks;AccountBookmarks.bak;"
    "EncryptedBookmarks;EncryptedBookmarks2";
constexpr std::string_view kPreferencesNames = "Preferences;Secure Preferences";
constexpr std::string_view kLocalStateName = "Local State";

bool isCookies(const Candidate &file) {
    return hasName(file, kCookieNames) && hasTables(file, {"cookies", "meta"});
}

bool isWebData(const Candidate &file) {
    return hasName(file, kWebDataNames) &&
           (hasTables(file, {"meta", "autofill"}) || hasTables(file, {"meta", "credit_cards"}) ||
            hasTables(file, {"meta", "keywords"}));
}

bool isLogins(const Candidate &file) {
    return hasName(file, kLoginNames) && hasTables(file, {"logins", "meta"});
}

bool isBookmarks(const Candidate &file) {
    if (!hasName(file, kBookmarkNames))
        return false;
    return file.name.starts_with("encrypted")
               ? !file.verifySignatures || !cipherVersion(file.head).empty()
               : isJsonWith(file, {"\"roots\""});
}

bool isPreferences(const Candidate &file) {
    return hasName(file, kPreferencesNames) &&
           isJsonWith(file, {"\"profile\"", "\"extensions\"", "\"partition\"", "\"protection\"",
                             "\"account_info\"", "\"browser\"", "\"account_tracker_"});
}

bool isLocalState(const Candidate &file) {
    return hasName(file, kLocalStateName) &&
           isJsonWith(file, {"\"profile\"", "\"os_crypt\"", "\"user_experience_metrics\"",
                             "\"browser\"", "\"uninstall_metrics\""});
}

} // namespace

constinit const Reader kChromiumCookiesFormat = {
    .type = chromiumCookies,
    .key = "chromium-cookies",
    .kind = "Chromium Cookies",
    .version = "1.0",
    .option = &kChromeCookiesOption,
    .mask = kCookieNames,
    .recognises = isCookies,
    .read = parseChromeCookiesFile,
    .kinds = kCookieKinds,
    .page = "chrome-cookies",
    .cases = {"chromium-cookies", "Cookies", "chromium-cookies/every-column"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumWebDataFormat = {
    .type = chromiumWebData,
    .key = "chromium-web-data",
    .kind = "Chromium Web Data",
    .option = &kChromeOtherOption,
    .mask = kWebDataNames,
    .recognises = isWebData,
    .read = parseChromiumWebData,
    .kinds = kWebDataKinds,
    .page = "chromium-web-data",
    .cases = {"chromium-web-data", "Web Data", "chromium-web-data/forms-and-people"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumLoginsFormat = {
    .type = chromiumLogins,
    .key = "chromium-logins",
    .kind = "Chromium Logins",
    .option = &kChromeOtherOption,
    .mask = kLoginNames,
    .recognises = isLogins,
    .read = parseChromiumLogins,
    .kinds = kLoginKinds,
    .page = "chromium-logins",
    .cases = {"chromium-logins", "Login Data", "chromium-logins/three-logins"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumBookmarksFormat = {
    .type = chromiumBookmarks,
    .key = "chromium-bookmarks",
    .kind = "Chromium Bookmarks",
    .option = &kChromeBookmarksOption,
    .mask = kBookmarkNames,
    .recognises = isBookmarks,
    .read = parseChromiumBookmarks,
    .kinds = kBookmarkKinds,
    .page = "chromium-bookmarks",
    .cases = {"chromium-bookmarks", "Bookmarks", "chromium-bookmarks/folders-in-folders"},
    .form = &kBookmarksForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumPreferencesFormat = {
    .type = chromiumPreferences,
    .key = "chromium-preferences",
    .kind = "Chromium Preferences",
    .option = &kChromeOtherOption,
    .mask = kPreferencesNames,
    .recognises = isPreferences,
    .read = parseChromiumSettings,
    .kinds = kSettingsKinds,
    .page = "chromium-settings",
    .cases = {"chromium-preferences", "Preferences", "chromium-preferences/sites-and-account"},
    .form = &kJsonForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumLocalStateFormat = {
    .type = chromiumLocalState,
    .key = "chromium-local-state",
    .kind = "Chromium Local State",
    .option = &kChromeOtherOption,
    .mask = kLocalStateName,
    .recognises = isLocalState,
    .read = parseChromiumSettings,
    .kinds = kSettingsKinds,
    .page = "chromium-settings",
    .cases = {"chromium-local-state", "Local State", "chromium-local-state/two-profiles"},
    .form = &kJsonForm,
    .isBeyondClassic = true,
};

} // namespace nv
