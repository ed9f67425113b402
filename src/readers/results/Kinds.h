#pragma once

#include "readers/RecordKind.h"

namespace nv {

inline constexpr RecordKind kNetAnalysis = {
    .key = "netanalysis",
    .word = "NetAnalysis",
    .family = &families::netAnalysis,
    .mayLackContent = true,
};

/// A page that lies in no cache.
inline constexpr RecordKind kSimpleHtml = {
    .key = "simple-html",
    .word = "Simple HTML",
};

} // namespace nv
