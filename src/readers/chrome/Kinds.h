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

inline constexpr RecordKind kChromeCookies = {
    .key = "chrome-cookies",
    .word = "Chrome Cookies",
    .family = &families::chrome,
    .group = RecordGroup::cookies,
    .icon = "cookie",
    .reportedAsInternetExplorer = true,
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
