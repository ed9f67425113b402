#pragma once

#include "db/FactList.h"

#include <string>

namespace nv {

/// The facts as members of their record's JSON object: "facts" has their values by their names,
/// "facts_raw" the raw forms of those that have one. What comes several times is a list. Empty
/// without facts.
std::string factMembers(const FactList &facts);

} // namespace nv
