#pragma once

#include "search/RowMatch.h"

namespace SQLite {
class Database;
}

namespace nv {

/// Tells the search which rows its tag: and hashset: conditions mean: those with a tag, or in a
/// hash set, of the whole name, in either case of letters; any for "*". "notable" and "known" stand
/// for all sets of that meaning too. No row has what isn't there. Throws what the database says.
void takeMarks(SQLite::Database &project, RowMatch &match);

} // namespace nv
