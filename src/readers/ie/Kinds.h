#pragma once

#include "readers/RecordKind.h"

namespace nv {

inline constexpr RecordKind kIEHistory = {
    .key = "ie-history",
    .word = "IE History",
    .family = &families::internetExplorer,
    .group = RecordGroup::history,
    .title = "Internet Explorer Master History",
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kIEDaily = {
    .key = "ie-daily",
    .word = "IE Daily",
    .family = &families::internetExplorer,
    .group = RecordGroup::history,
    .title = "Internet Explorer Daily History",
    .reportedAsInternetExplorer = true,
};

inline constexpr RecordKind kIEWeekly = {
    .key = "ie-weekly",
    .word = "IE Weekly",
    .family = &families::internetExplorer,
    .group = RecordGroup::history,
    .title = "Internet Explorer Weekly History",
    .reportedAsInternetExplorer = true,
    .inLocalTime = true,
};

inline constexpr RecordKind kIECache = {
    .key = "ie-cache",
    .word = "IE Cache",
    .family = &families::internetExplorer,
    .group = RecordGroup::cache,
    .parts = CacheParts::byPath,
    .title = "Internet Explorer Cache",
};

/// An index and the texts beside it call the same artefact by two words.
inline constexpr RecordKind kIECookies = {
    .key = "ie-cookies",
    .word = "IE Cookies",
    .family = &families::internetExplorer,
    .group = RecordGroup::cookies,
    .otherWord = "IE Cookie",
    .icon = "cookie",
    .reportedAsInternetExplorer = true,
};

/// A record in an index that no entry of its hash leads to. Filters know it as no history and no
/// cache, so that none passes for what the browser still listed.
inline constexpr RecordKind kIERemnant = {
    .key = "ie-remnant",
    .word = "IE Remnant",
    .family = &families::internetExplorer,
};

/// Records of an index that a results file holds.
inline constexpr RecordKind kImportedBinary = {
    .key = "imported-binary",
    .word = "Imported Binary",
};

/// What was found outside of files.
inline constexpr RecordKind kUnallocated = {
    .key = "unallocated",
    .word = "Unallocated",
};

} // namespace nv
