#pragma once

#include "readers/RecordKind.h"

namespace nv {

inline constexpr RecordKind kChromeHistory = {
    .key = "chrome-history",
    .word = "Chrome History",
    .family = &families::chrome,
    .group = RecordGroup::history,
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kChromeCache = {
    .key = "chrome-cache",
    .word = "Chrome Cache",
    .family = &families::chrome,
    .group = RecordGroup::cache,
    .parts = CacheParts::byUrl,
};

/// An entry that no slot of the index leads to. Pages aren't built of it, nor is it a part of one.
inline constexpr RecordKind kChromeCacheRemnant = {
    .key = "chrome-cache-remnant",
    .word = "Chrome Cache Remnant",
    .family = &families::chrome,
    .group = RecordGroup::cache,
};

inline constexpr RecordKind kChromeCookies = {
    .key = "chrome-cookies",
    .word = "Chrome Cookies",
    .family = &families::chrome,
    .group = RecordGroup::cookies,
    .icon = "cookie",
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kChromeFormValue = {
    .key = "chrome-form-value",
    .word = "Chrome Form Value",
    .family = &families::chrome,
};

inline constexpr RecordKind kChromeAddress = {
    .key = "chrome-address",
    .word = "Chrome Address",
    .family = &families::chrome,
};

inline constexpr RecordKind kChromeCard = {
    .key = "chrome-card",
    .word = "Chrome Card",
    .family = &families::chrome,
};

inline constexpr RecordKind kChromeSearchEngine = {
    .key = "chrome-search-engine",
    .word = "Chrome Search Engine",
    .family = &families::chrome,
};

inline constexpr RecordKind kChromeLogin = {
    .key = "chrome-login",
    .word = "Chrome Login",
    .family = &families::chrome,
};

inline constexpr RecordKind kChromeBookmark = {
    .key = "chrome-bookmark",
    .word = "Chrome Bookmark",
    .family = &families::chrome,
    .group = RecordGroup::bookmarks,
};

inline constexpr RecordKind kChromeSiteSetting = {
    .key = "chrome-site-setting",
    .word = "Chrome Site Setting",
    .family = &families::chrome,
};

inline constexpr RecordKind kChromeAccount = {
    .key = "chrome-account",
    .word = "Chrome Account",
    .family = &families::chrome,
};

inline constexpr RecordKind kChromeVisit = {
    .key = "chrome-visit",
    .word = "Chrome Visit",
    .family = &families::chrome,
    .group = RecordGroup::history,
};

inline constexpr RecordKind kChromeDownload = {
    .key = "chrome-download",
    .word = "Chrome Download",
    .family = &families::chrome,
    .group = RecordGroup::history,
};

inline constexpr RecordKind kChromeSearchTerm = {
    .key = "chrome-search-term",
    .word = "Chrome Search Term",
    .family = &families::chrome,
    .group = RecordGroup::history,
};

inline constexpr RecordKind kChromeShortcut = {
    .key = "chrome-shortcut",
    .word = "Chrome Shortcut",
    .family = &families::chrome,
    .group = RecordGroup::other,
};

inline constexpr RecordKind kChromeIcon = {
    .key = "chrome-icon",
    .word = "Chrome Icon",
    .family = &families::chrome,
    .group = RecordGroup::other,
};

inline constexpr RecordKind kChromeTopSite = {
    .key = "chrome-top-site",
    .word = "Chrome Top Site",
    .family = &families::chrome,
    .group = RecordGroup::other,
};

} // namespace nv
