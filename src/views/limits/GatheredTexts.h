#pragma once

#include "views/rows/IdLoader.h"
#include "views/rows/UrlQuery.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nv {

/// What stands in a column whose cells are made of several rows of another table, for all rows of a
/// project: names of tags, hash sets. A row takes eight bytes, a text is kept once.
class GatheredTexts {
  public:
    /// In ascending order of the ids.
    void add(std::int32_t id, std::string_view text);
    /// Empty for a row without any.
    std::string_view of(std::int32_t id) const;
    /// The texts' places in their order, so that rows are sorted without comparing texts; 0 is for
    /// rows without any.
    std::uint32_t rankOf(std::int32_t id) const;
    /// Once all are added, before rankOf().
    void rank();

  private:
    const std::pair<std::int32_t, std::uint32_t> *find(std::int32_t id) const;

    std::vector<std::pair<std::int32_t, std::uint32_t>> m_rows; ///< id, and the text's place
    std::vector<std::string> m_texts;
    std::vector<std::uint32_t> m_ranks; ///< of the texts, from 1
    std::unordered_map<std::string, std::uint32_t> m_places;
};

/// Reads those of a column that isGathered(). A project of an earlier build has none. Throws what
/// the database says; a cancel leaves those that were read.
Walk gatherTexts(SQLite::Database &project, UrlColumn column, TaskMonitor &task,
                 GatheredTexts &texts);

/// Puts the rows into the order of the column's texts; equal ones stay as they are. Rows without
/// any text come last either way. A cancel leaves the order as it is.
Walk sortByGathered(SQLite::Database &project, const ColumnSort &sort, TaskMonitor &task,
                    RowIds &ids);

} // namespace nv
