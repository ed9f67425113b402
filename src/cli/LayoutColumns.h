#pragma once

#include "views/rows/UrlColumns.h"

#include <string>
#include <vector>

namespace nv::cli {

class Session;

/// The columns that a layout of the open project shows, from left to right: a built-in one or one
/// of the examiner's own. Throws UsageError, naming those that there are, when there is none of
/// this name.
std::vector<UrlColumn> columnsOfLayout(Session &session, const std::string &name);

} // namespace nv::cli
