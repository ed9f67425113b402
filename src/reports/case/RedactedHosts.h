#pragma once

#include "reports/case/Redaction.h"

#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// A sentence for each host of the rules that no row is of, with hosts whose names hold it: who
/// gives a part of a name would hand over what was to be left out.
std::vector<std::string> notesOnHosts(SQLite::Database &project, const RedactionRules &rules);

} // namespace nv
