#pragma once

#include "app/program/Program.h"
#include "db/schema/Ids.h"
#include "views/rows/UnreadRows.h"

#include <string>
#include <vector>

namespace nv {

/// The rows of the open project that a query gives. Those of which nobody can tell, as they lie
/// where the project is damaged, are named in the log and in `unread`. Throws what the database
/// says.
std::vector<UrlId> idsPastDamage(Program &program, const std::string &sql, UnreadRows &unread);

} // namespace nv
