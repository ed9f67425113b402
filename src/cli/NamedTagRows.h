#pragma once

#include "cli/Argument.h"
#include "views/table/UrlTable.h"

#include <string>
#include <vector>

namespace nv::cli {

class Session;

/// The option by which a command takes only rows with a tag of this name.
Argument tagOption(std::string &tag);
/// The same of several names.
Argument tagsOption(std::vector<std::string> &tags);

/// The tag of a project. Throws UsageError when there is none of this name.
NamedTag namedTag(SQLite::Database &project, const std::string &name);

/// Makes the next load of the table, which is of the open project, leave only rows with one of the
/// tags; all rows without a name. Throws UsageError as above.
void limitToTags(Session &session, const std::vector<std::string> &tags, UrlTable &table);

} // namespace nv::cli
