#pragma once

#include "base/TaskMonitor.h"
#include "search/FoundIds.h"
#include "search/RowMatch.h"
#include "search/SearchIndex.h"
#include "search/StillWanted.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// A name and how many rows are of it, the most first.
using NamedCounts = std::vector<std::pair<std::string, std::int64_t>>;

struct FoundCounts {
    NamedCounts byKind; ///< by `CacheType`
    NamedCounts byHost;
};

struct SearchFound {
    FoundIds ids;
    FoundCounts counts;       ///< of `ids`; of a search by the index alone
    bool isCancelled = false; ///< `ids` are those of the part that was looked through
    /// Rows that couldn't be read, or not whole: nobody can tell of them.
    std::set<std::int32_t> unread;
    std::int64_t outside = 0; ///< rows whose ids no list can hold: they weren't searched
    IndexNews index;          ///< what became of the index
};

/// The rows that meet a search. The index is brought up to date before, and made anew when it shows
/// itself damaged. What it can't tell, as of expressions, is looked for in the rows that are left.
/// With a `most` a search of one text ends when it has so many. Throws StorageFailure.
SearchFound findRows(SQLite::Database &project, SearchIndex &index, RowMatch &match,
                     TaskMonitor &task, std::size_t most = 0);

/// The same by an index that is open, as it stands, and without counts. Throws what the database
/// says.
SearchFound findIndexed(SQLite::Database &project, SearchIndex &index, RowMatch &match,
                        TaskMonitor &task, std::size_t most = 0);
/// Of a part of them when they are no longer wanted at its end. Throws what the database says.
FoundCounts countFound(SearchIndex &index, const FoundIds &ids, StillWanted &wanted);
/// The search looks for parts of words in pages and headers, for which the index has a table of its
/// own.
bool needsParts(const RowMatch &match);

/// The same without an index, row by row.
SearchFound scanRows(SQLite::Database &project, RowMatch &match, TaskMonitor &task,
                     std::size_t most = 0);

/// A piece of a text around a mark.
struct Snippet {
    std::string text; ///< "…" stands where it was cut
    TextSpan mark;    ///< of `text`
};
Snippet snippetOf(std::string_view text, const TextSpan &mark);

} // namespace nv
