#pragma once

#include "base/TaskMonitor.h"
#include "reports/case/Redaction.h"
#include "views/rows/IdLoader.h"

#include <cstdint>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// Whether values are looked for too, which goes through all texts of the rows.
enum class NotedThings : std::uint8_t { names, all };

/// A sentence for each rule that fits no row of the project, with the names that are written most
/// alike: who misspells one would hand over what was to be left out. Throws what the database says.
Walk notesOnRedactions(SQLite::Database &project, const RedactionRules &rules, NotedThings things,
                       TaskMonitor &task, std::vector<std::string> &notes);

/// The rules that nothing in a report fitted, a sentence.
std::string unmetText(const RedactionRules &rules);

} // namespace nv
