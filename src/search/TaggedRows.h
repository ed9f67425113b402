#pragma once

#include "search/RowMatch.h"

namespace SQLite {
class Database;
}

namespace nv {

/// Tells the search which rows its tag: conditions mean: those with a tag of the whole name, in
/// either case of letters, or with any for "*". No row has a tag that isn't there. Throws what the
/// database says.
void takeTags(SQLite::Database &project, RowMatch &match);

} // namespace nv
