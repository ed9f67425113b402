#pragma once

#include "views/overview/ImportOverview.h"

namespace nv {

/// Counts the rows of the overview's scope by person, browser, profile and kind. A cancel leaves it
/// without counts. Throws what the database says, but that its rows are damaged.
Walk countImported(SQLite::Database &project, TaskMonitor &task, ImportOverview &overview);

} // namespace nv
