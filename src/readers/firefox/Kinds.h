#pragma once

#include "readers/RecordKind.h"

namespace nv {

inline constexpr RecordKind kFirefoxCache = {
    .key = "firefox-cache",
    .word = "Firefox Cache",
    .family = &families::firefox,
    .group = RecordGroup::cache,
    .parts = CacheParts::byUrl,
    .hasXhtmlPages = true,
};

/// Metadata that the map of the cache doesn't list any more. Pages aren't built of it, nor is it a
/// part of one.
inline constexpr RecordKind kFirefoxCacheRemnant = {
    .key = "firefox-cache-remnant",
    .word = "Firefox Cache Remnant",
    .family = &families::firefox,
    .group = RecordGroup::cache,
    .hasXhtmlPages = true,
};

/// What sites keep by their own programs: stored in another form than it was sent.
inline constexpr RecordKind kFirefoxSiteCache = {
    .key = "firefox-site-cache",
    .word = "Firefox Site Cache",
    .family = &families::firefox,
    .group = RecordGroup::cache,
    .hasXhtmlPages = true,
};

inline constexpr RecordKind kFirefox2History = {
    .key = "firefox2-history",
    .word = "Firefox2 History",
    .family = &families::firefox,
    .group = RecordGroup::history,
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kFirefox3History = {
    .key = "firefox3-history",
    .word = "Firefox3 History",
    .family = &families::firefox,
    .group = RecordGroup::history,
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kFirefoxCookies = {
    .key = "firefox-cookies",
    .word = "Firefox Cookies",
    .family = &families::firefox,
    .group = RecordGroup::cookies,
    .icon = "cookie",
    .reportedAsInternetExplorer = true,
};

// Beyond the classic rules.

inline constexpr RecordKind kFirefoxVisit = {
    .key = "firefox-visit",
    .word = "Firefox Visit",
    .family = &families::firefox,
    .group = RecordGroup::history,
};

inline constexpr RecordKind kFirefoxDownload = {
    .key = "firefox-download",
    .word = "Firefox Download",
    .family = &families::firefox,
    .group = RecordGroup::history,
};

inline constexpr RecordKind kFirefoxBookmark = {
    .key = "firefox-bookmark",
    .word = "Firefox Bookmark",
    .family = &families::firefox,
    .group = RecordGroup::bookmarks,
};

inline constexpr RecordKind kFirefoxFormValue = {
    .key = "firefox-form-value",
    .word = "Firefox Form Value",
    .family = &families::firefox,
    .group = RecordGroup::other,
};

inline constexpr RecordKind kFirefoxPermission = {
    .key = "firefox-permission",
    .word = "Firefox Permission",
    .family = &families::firefox,
    .group = RecordGroup::other,
};

inline constexpr RecordKind kFirefoxLogin = {
    .key = "firefox-login",
    .word = "Firefox Login",
    .family = &families::firefox,
    .group = RecordGroup::other,
};

inline constexpr RecordKind kFirefoxIcon = {
    .key = "firefox-icon",
    .word = "Firefox Icon",
    .family = &families::firefox,
    .group = RecordGroup::other,
};

} // namespace nv
