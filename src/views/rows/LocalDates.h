#pragma once

#include "base/TaskMonitor.h"
#include "db/records/RecordStore.h"

#include <cstdint>
#include <optional>

namespace nv {

/// Stores `ActionDateLocal` of all rows anew, as the zone has it now, so that orders and queries go
/// by what is shown. The number of rows; nothing, and none changed, when the task was cancelled.
/// Throws StorageFailure when the project can't be written or read.
std::optional<std::int64_t> storeLocalDates(SQLite::Database &project, const ProjectZone &zone,
                                            TaskMonitor &task);

} // namespace nv
