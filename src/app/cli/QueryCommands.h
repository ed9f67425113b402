#pragma once

#include "app/cli/Commands.h"

#include <string>

namespace nv::cli {

// Changes of the stored queries; `queriesCommand` lists them.

struct StoredQueryArguments {
    std::string project;
    std::string name;
    std::string sql;
    bool overwrite = false;
};
/// Keeps the statement under the name. Reserved names and statements that can't run are refused.
Exit saveQueryCommand(Session &session, const StoredQueryArguments &arguments);
/// Writes the query's text and nothing else.
Exit showQueryCommand(Session &session, const StoredQueryArguments &arguments);
Exit deleteQueryCommand(Session &session, const StoredQueryArguments &arguments);

} // namespace nv::cli
