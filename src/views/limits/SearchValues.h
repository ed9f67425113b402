#pragma once

#include "search/Search.h"
#include "views/rows/IdLoader.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What the rows of a project have of all that a search asks for by name. The most frequent come
/// first.
struct SearchValues {
    NamedCounts hosts;
    NamedCounts browsers; ///< of a row that names none its family
    NamedCounts kinds;    ///< groups before the types in them
    NamedCounts tags;     ///< in their order, those without rows among them
    NamedCounts hashSets;
    bool areAll = false; ///< otherwise rows couldn't be read, and there may be others

    /// Those that the operator takes; null for the others.
    const NamedCounts *of(ClauseKind kind) const;
};

/// Reads all rows once. Throws what the database says; a cancel and damage leave `values` empty.
Walk loadSearchValues(SQLite::Database &project, TaskMonitor &task, SearchValues &values);

/// Tags and hash sets alone, which change while the rows stay.
void readMarkValues(SQLite::Database &project, SearchValues &values);

/// Whether an operator with `asked` behind it, its letters folded, takes rows with this value.
bool takesValue(ClauseKind kind, std::string_view value, std::string_view asked);

/// Those with `part` in them, in either case of letters: those that begin with it first, then by
/// how many rows have them; at most `most`.
NamedCounts valuesWith(const NamedCounts &values, std::string_view part, std::size_t most);

/// At most `most`, those first of which a part is written most alike, then the most frequent.
NamedCounts nearestValues(const NamedCounts &values, std::string_view asked, std::size_t most);

/// The nearest ten with their rows, on a line: "a.example (3), b.example (1) and 7 more".
std::string listedValues(const NamedCounts &values, std::string_view asked);

/// What of a search takes no row whatever the rest of it says, a sentence each with the nearest
/// values that there are: names that no row has, and words that look like an operator but are none.
/// Empty when there is nothing to say, and while it isn't known what there is.
std::vector<std::string> searchAdvice(const SearchQuery &query, const SearchValues &values);
/// Whether it can say anything of this search.
bool canBeAdvised(const SearchQuery &query);

} // namespace nv
