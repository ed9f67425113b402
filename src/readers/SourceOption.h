#pragma once

#include "readers/RecordKind.h"

#include <string_view>

namespace nv {

/// A check box of the wizard that decides which artefacts are wanted. It stands beside the formats
/// that it turns on; those of one family and group share it.
struct SourceOption {
    std::string_view name; ///< of the box: "chkCacheChrome"
    RecordGroup group;     ///< the wizard's column
    /// The wizard's row. Without one the box stands beside the table, with its own text.
    const BrowserFamily *family = nullptr;
    std::string_view text = {};
    /// Masks are joined by rank, and by the order of the formats where it is the same. The boxes of
    /// the first version have ranks of their own; others need none.
    int rank = 100;
    int place = 100; ///< among the boxes beside the table, in the same way
};

} // namespace nv
