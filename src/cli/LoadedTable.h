#pragma once

#include "cli/Exit.h"
#include "cli/SharedArguments.h"
#include "views/table/UrlTable.h"

#include <string>

namespace nv::cli {

class Session;

/// That the stored query of this name finds nothing for want of its list of terms.
std::string missingTerms(const std::string &name);

/// Throws UsageError when the project has no such stored query; tells when it lacks its terms. An
/// empty name stands for "_DEFAULT".
void checkQuery(Session &session, const std::string &name);

/// The rows that were asked for, but for their filters.
RowChoice choiceOf(const RowsAsked &rows);

/// Fills `table`, made on the open project, as the window would. Throws UsageError for a query that
/// isn't there and StorageFailure when the load fails.
LoadResult loadTable(Session &session, const RowChoice &choice, UrlTable &table);

/// Names the rows that could not be read, and gives the exit code that tells so.
Exit tellUnread(Session &session, const UnreadRows &rows);

} // namespace nv::cli
