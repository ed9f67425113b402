#pragma once

#include "db/marks/NamedTags.h"
#include "views/limits/PlaceLimit.h"
#include "views/rows/IdLoader.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv {

/// Rows of which a table shows no others: those with one of the named tags, or those without any.
struct TagLimit {
    std::vector<std::int64_t> tagIDs;
    bool untagged = false; ///< rows without a tag, too

    bool isEmpty() const { return tagIDs.empty() && !untagged; }
    friend bool operator==(const TagLimit &, const TagLimit &) = default;
};

/// The limit as a condition on `URL_ID` of a statement over table `URLs`. The project may have no
/// tags.
std::string conditionOf(const TagLimit &limit, SQLite::Database &project);

/// Takes the other rows out of `ids`; a cancel leaves all. Throws what the database says.
Walk keepTagged(SQLite::Database &project, const TagLimit &limit, TaskMonitor &task, RowIds &ids);

// Among the places tags are a tree: each by its name, and the rows without any by none. They limit
// rows besides the other places.

/// Whether the place is of that tree.
bool isOfTags(const PlaceLimit &place);
/// The rows of a place of that tree. A name that no tag has stands for none.
TagLimit tagLimitOf(const std::vector<NamedTag> &tags, const std::string &name);
/// Whether the limit shows the rows of this other one.
bool hasAll(const TagLimit &limit, const TagLimit &part);
/// Shows its rows too, or no longer.
void flipAll(TagLimit &limit, const TagLimit &part);
/// "Important or For the hearing", for people.
std::string tagLimitText(const std::vector<NamedTag> &tags, const TagLimit &limit);

} // namespace nv
