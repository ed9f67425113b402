#pragma once

#include "views/rows/RecordFilters.h"

#include <string>
#include <vector>

namespace nv::cli {

/// Filters that are on with these flags, by their names in any case with or without "show"; off
/// when there are none. "browser=Chromium", "profile=..." and "person=..." choose whose records;
/// alone they hide no kind. Throws UsageError for a name that is none, and when no data source is
/// among them, as the window's dialog asks for one too.
RecordFilters filtersFrom(const std::vector<std::string> &names);

} // namespace nv::cli
