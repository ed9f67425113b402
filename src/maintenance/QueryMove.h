#pragma once

#include "base/FailureLog.h"

#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// Makes the views of all stored queries anew from their texts, whatever stood there before. A
/// query whose text doesn't work in this schema keeps its text; it is logged, and one line about it
/// is appended to `notes`.
void remakeViews(SQLite::Database &project, FailureLog &log, std::vector<std::string> &notes);

} // namespace nv
