#pragma once

#include "base/TaskMonitor.h"
#include "views/rows/IdLoader.h"
#include "views/rows/UnreadRows.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// A host of the project. Hosts that differ in case only are one.
struct HostRow {
    std::string host;        ///< empty for all records without a host
    std::int64_t visits = 0; ///< of its records together; unknown counts are left out
    std::int64_t records = 0;
};

enum class HostSort { ByName, ByVisits };

/// The entries of the list's menu.
struct HostSortFacts {
    HostSort sort;
    std::string_view label;
};
extern const std::array<HostSortFacts, 2> kHostSorts;

/// All hosts of the project: by name ascending, or by visits descending and then by name. Throws
/// what the database says; a cancel leaves `hosts` empty. No host counts the records in `unread`,
/// which lie where the project is damaged.
Walk listHosts(SQLite::Database &project, HostSort sort, TaskMonitor &task,
               std::vector<HostRow> &hosts, UnreadRows &unread);

} // namespace nv
