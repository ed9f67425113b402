#pragma once

#include "readers/RecordKind.h"

namespace nv {

inline constexpr RecordKind kOperaCache = {
    .key = "opera-cache",
    .word = "Opera Cache",
    .family = &families::opera,
    .group = RecordGroup::cache,
    .parts = CacheParts::byUrl,
};

inline constexpr RecordKind kOperaHistory = {
    .key = "opera-history",
    .word = "Opera History",
    .family = &families::opera,
    .group = RecordGroup::history,
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kOperaCookies = {
    .key = "opera-cookies",
    .word = "Opera Cookies",
    .family = &families::opera,
    .group = RecordGroup::cookies,
    .icon = "cookie",
    .reportedAsInternetExplorer = true,
};

} // namespace nv
