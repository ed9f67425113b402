#pragma once

#include "app/cli/Session.h"
#include "views/UrlTable.h"

namespace nv::cli {

/// Fills `table`, made on the open project, as the window would. Throws UsageError for a query that
/// isn't there and StorageFailure when the load fails.
LoadResult loadTable(Session &session, const RowChoice &choice, UrlTable &table);

} // namespace nv::cli
