#pragma once

#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// The path of the file that a row of `URLs` came from. One that is a record itself is told by its
/// place alone.
inline constexpr const char *kRowPath =
    "CASE WHEN ifnull(HistoryFilePath, '') <> '' THEN HistoryFilePath "
    "ELSE ifnull(RootPath, '') || ifnull(CacheFileRelativePath, '') END";

/// What gives the folder of evidence that a row of `URLs` came from, in a statement of this
/// connection: the folder that was chosen for the import, as it was called then, where several
/// were, else the base folder. It ends in a separator. A folder that lies in another one counts as
/// that. Valid until the next import; throws what the database says.
std::string evidenceExpression(SQLite::Database &project);

} // namespace nv
