#pragma once

#include "db/marks/RecordTags.h"
#include "db/records/FactList.h"

#include <string>
#include <vector>

namespace nv {

/// The facts as members of their record's JSON object: "facts" has their values by their names,
/// "facts_raw" the raw forms of those that have one. What comes several times is a list. Empty
/// without facts.
std::string factMembers(const FactList &facts);

/// The names of a row's tags as a member "tag_names" with a list. Empty without tags.
std::string tagMember(const std::vector<RowTag> &tags);

} // namespace nv
