#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <string_view>

namespace nv {

/// Names the version of the file's schema, "History 70", as the browser's, where nothing tells that
/// one. It stands in table `meta` of every database of the family.
void noteSchemaVersion(ReadContext &ctx, EvidenceDatabase &database, std::string_view name);

} // namespace nv
