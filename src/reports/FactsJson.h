#pragma once

#include "db/FactList.h"

#include <nlohmann/json.hpp>

namespace nv {

/// Adds the facts to a record's object: "facts" has their values by their names, "facts_raw" the
/// raw forms of those that have one. What comes several times is a list. Without facts there is
/// neither.
void addFacts(nlohmann::ordered_json &record, const FactList &facts);

} // namespace nv
