#pragma once

#include "base/TaskMonitor.h"
#include "search/Expression.h"
#include "search/SearchedRow.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

class KeywordTexts;

/// A term in a field of a row.
struct KeywordHit {
    std::int32_t row = 0;
    std::uint32_t term = 0; ///< of the list, from 0
    SearchField field = SearchField::address;
    std::uint32_t hits = 0; ///< how often
    TextSpan first;         ///< of the field's text
};

struct KeywordFound {
    std::vector<KeywordHit> hits;    ///< by rows, and within one by fields
    std::vector<std::int64_t> rows;  ///< of each term
    std::vector<std::int64_t> times; ///< of each term
    std::int64_t rowsLooked = 0;
    std::int64_t rowsFound = 0;
    std::set<std::int32_t> unread; ///< rows that couldn't be read, or not whole
    std::int64_t outside = 0;      ///< rows whose ids no list can hold: they aren't looked through
    bool isCancelled = false;      ///< the hits are those of the part that was looked through
    bool isCut = false; ///< `hits` are not all: there are more than fit; the counts are whole
};

/// Looks for all terms of a list in all texts of all rows, in one pass over the project. Throws
/// what the database says.
KeywordFound findKeywords(SQLite::Database &project, KeywordTexts &terms, TaskMonitor &task,
                          std::size_t mostHits = 5'000'000);

} // namespace nv
