#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/schema/Ids.h"

#include <cstdint>
#include <span>

namespace SQLite {
class Database;
}

namespace nv {

/// Writes `Tagged` of one row at once. False when it couldn't be written, which is logged.
bool setTagged(SQLite::Database &database, FailureLog &log, UrlId id, bool tagged);

/// The same for many rows in one transaction: all of them, or none after a cancel or a failure.
bool setTagged(SQLite::Database &database, FailureLog &log, std::span<const std::int32_t> ids,
               bool tagged, TaskMonitor &task);

} // namespace nv
