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

} // namespace nv
