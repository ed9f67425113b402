#pragma once

#include "views/IdLoader.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv {

/// Rows of which a table shows no others: those with one of the named tags, or those without any.
struct TagLimit {
    std::vector<std::int64_t> tagIDs;
    bool untagged = false; ///< rows without a tag, too

    friend bool operator==(const TagLimit &, const TagLimit &) = default;
};

/// The limit as a condition on `URL_ID` of a statement over table `URLs`. The project may have no
/// tags.
std::string conditionOf(const TagLimit &limit, SQLite::Database &project);

/// Takes the other rows out of `ids`; a cancel leaves all. Throws what the database says.
Walk keepTagged(SQLite::Database &project, const TagLimit &limit, TaskMonitor &task, RowIds &ids);

} // namespace nv
