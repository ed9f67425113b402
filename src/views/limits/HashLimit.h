#pragma once

#include "views/limits/PlaceLimit.h"
#include "views/rows/IdLoader.h"

#include <string>
#include <vector>

namespace nv {

/// Rows of which a table shows no others, by the hash sets that their files were found in.
struct HashLimit {
    std::vector<std::string> sets = {}; ///< in one of these, or ...
    bool notable = false;               ///< ... in any notable one, or ...
    bool known = false;                 ///< ... in any known one; without all three: in any or none
    /// Not those in a known one. A file that is in a notable set too is never hidden by this.
    bool withoutKnown = false;

    /// Shows only rows that are in some set.
    bool isOnly() const { return notable || known || !sets.empty(); }
    bool isEmpty() const { return !isOnly() && !withoutKnown; }
    friend bool operator==(const HashLimit &, const HashLimit &) = default;
};

/// Takes the other rows out of `ids`; a cancel leaves all. A project without findings has no row in
/// any set. Throws what the database says.
Walk keepByHashSets(SQLite::Database &project, const HashLimit &limit, TaskMonitor &task,
                    RowIds &ids);

// Among the places hash sets are a tree: what they are for, and the sets. They limit rows besides
// the other places.

/// Whether the place is of that tree.
bool isOfHashSets(const PlaceLimit &place);
/// Whether it is that of all known files.
bool isKnownFiles(const PlaceLimit &place);
/// Whether the limit shows the rows of this place.
bool hasTerm(const HashLimit &limit, const PlaceTerm &term);
/// Shows its rows too, or no longer.
void flipTerm(HashLimit &limit, const PlaceTerm &term);

} // namespace nv
