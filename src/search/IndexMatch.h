#pragma once

#include "search/SearchQuery.h"

#include <string>

namespace nv {

// A condition of text as the tables of an index are asked for it, in the language of FTS5.

/// The tables can tell of it.
bool isTold(const SearchClause &clause);
/// Of values, and of parts of words, by their runs of letters.
std::string runMatchOf(const SearchClause &clause);
/// Of texts, by their words; empty for what has none.
std::string wordMatchOf(const SearchClause &clause);

} // namespace nv
