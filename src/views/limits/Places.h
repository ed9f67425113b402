#pragma once

#include "db/marks/NamedTags.h"
#include "views/limits/PlaceLimit.h"

#include <cstdint>
#include <vector>

namespace nv {

/// A place and what lies in it. Its rows are those of all terms from the root of its tree to it.
struct PlaceNode {
    PlaceTerm term;
    std::uint64_t records = 0;
    std::vector<PlaceNode> children = {};
};

/// Where the rows of a project come from, with their counts.
struct Places {
    /// Folder, person, browser, profile, group of kinds; by name. A level of which nothing is known
    /// is left out.
    std::vector<PlaceNode> evidence;
    /// Registered domain, host; those of most rows first. A domain that is its one host has no
    /// children.
    std::vector<PlaceNode> hosts;
    /// Group, kind; in the order of the groups.
    std::vector<PlaceNode> kinds;
    /// Tags in their order, and behind them the rows without any. A row may have several.
    std::vector<PlaceNode> tags;
    /// What hash sets are for, set; notable ones first. A row may be in several.
    std::vector<PlaceNode> hashSets;
    std::uint64_t records = 0;
    UnreadRows unread; ///< rows that no place counts, since the project is damaged there
};

/// The tags of a project with their rows, of which there are so many in all. They change while the
/// rows stay. Throws what the database says.
std::vector<PlaceNode> tagPlaces(SQLite::Database &project, std::uint64_t records);

/// Counts all rows in one pass. Throws what the database says; a cancel leaves `places` empty.
Walk loadPlaces(SQLite::Database &project, TaskMonitor &task, Places &places);

} // namespace nv
