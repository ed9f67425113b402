#pragma once

#include "readers/RecordKind.h"

namespace nv {

/// Its pages aren't rebuilt: nothing is known of how they name their parts.
inline constexpr RecordKind kMacIECache = {
    .key = "mac-cache",
    .word = "Mac IE Cache",
    .family = &families::macIE,
    .group = RecordGroup::cache,
    .reportedAsInternetExplorer = true,
};

} // namespace nv
