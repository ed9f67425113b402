#pragma once

#include "views/explain/Explain.h"

#include <string_view>

namespace nv {

/// A field that isn't read from the source as it stands, whatever the format.
struct MadeBy {
    std::string_view field;
    OriginCheck check;
    std::string_view rule;
    bool isAlways = false; ///< also where the record isn't found in the evidence any more
};
/// Null for a field that formats fill.
const MadeBy *madeBy(std::string_view field);
/// How the readers make a field that they don't read: for those of which neither a place nor a rule
/// tells. Null for others.
const MadeBy *madeOtherwise(std::string_view field);

} // namespace nv
