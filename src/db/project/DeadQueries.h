#pragma once

#include "db/project/StoredQueries.h"

namespace nv {

/// A stored query of a new project that can find nothing, whatever the evidence holds: it asks for
/// a category that no import writes, for a link of a page to itself, or for terms of a list that
/// is empty. One that an examiner has rewritten is none.
bool isDeadQuery(const StoredQuery &query);

} // namespace nv
