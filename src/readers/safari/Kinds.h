#pragma once

#include "readers/RecordKind.h"

namespace nv {

inline constexpr RecordKind kSafariCache = {
    .key = "safari-cache",
    .word = "Safari Cache",
    .family = &families::safari,
    .group = RecordGroup::cache,
    .parts = CacheParts::byUrl,
};

inline constexpr RecordKind kSafariHistory = {
    .key = "safari-history",
    .word = "Safari History",
    .family = &families::safari,
    .group = RecordGroup::history,
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kSafariCookies = {
    .key = "safari-cookies",
    .word = "Safari Cookies",
    .family = &families::safari,
    .group = RecordGroup::cookies,
    .icon = "cookie",
    .reportedAsInternetExplorer = true,
};

} // namespace nv
