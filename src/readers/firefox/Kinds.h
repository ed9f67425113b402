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

} // namespace nv
