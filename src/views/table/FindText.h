#pragma once

#include "base/TaskMonitor.h"
#include "db/sql/LikePattern.h"
#include "views/rows/IdLoader.h"
#include "views/rows/RowCells.h"
#include "views/rows/UnreadRows.h"
#include "views/rows/UrlColumns.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A text that is looked for in columns of the table, in either case of letters.
struct FindText {
    std::string text;
    std::vector<UrlColumn> columns; ///< in the order in which they are shown

    bool operator==(const FindText &) const = default;
};

/// Matches whole values of one column.
class FindPattern {
  public:
    explicit FindPattern(std::string_view text);
    /// A text as it is stored.
    bool isIn(std::string_view stored) const;
    /// A text as the table shows it.
    bool isInShown(std::string_view shown) const { return m_pattern.matches(shown); }

  private:
    LikePattern m_pattern;
    bool m_hasStandIns; ///< looks for "<U+202E>" and the like, which no stored text holds
};

/// The rows that hold the text.
struct FoundTexts {
    RowIds ids; ///< ascending
    UnreadRows unread;
};

/// Those of `ids` that hold the text, whole values and not only what a cell shows of a long one.
/// One statement reads the stored texts of all rows in the order in which they lie in the file;
/// cells that are computed, such as dates, are made by `cells` where the text may stand in one.
/// Nothing when cancelled.
std::optional<FoundTexts> rowsWith(const FindText &what, const RowIds &ids,
                                   SQLite::Database &database, RowCells &cells, TaskMonitor &task);

} // namespace nv
