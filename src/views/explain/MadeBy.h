#pragma once

#include "views/explain/Explain.h"

#include <string_view>

namespace nv {

/// A field that isn't read from the source as it stands, whatever the format.
struct MadeBy {
    std::string_view field;
    OriginCheck check;
    std::string_view rule;
};
/// Null for a field that formats fill.
const MadeBy *madeBy(std::string_view field);

} // namespace nv
