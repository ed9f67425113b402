#pragma once

#include "views/limits/TypedSpan.h"
#include "views/rows/IdLoader.h"
#include "views/rows/UrlColumns.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nv {

/// Which rows a table shows by what stands in one column. Of its conditions those that are given
/// have to be met. Columns are compared as the project
/// stores them, flags as "Yes" and "No", types in the words of the table.
struct ColumnLimit {
    UrlColumn column = UrlColumn::Host;
    std::optional<std::vector<std::string>> oneOf = {}; ///< whole values
    std::string part = {};           ///< of a text, in either case of letters; empty for any
    std::optional<double> from = {}; ///< of a number
    std::optional<double> to = {};   ///< which belongs to it
    std::optional<DateRange> dates = {};

    bool operator==(const ColumnLimit &) const = default;
};

enum class ColumnValues : std::uint8_t { none, texts, numbers, dates };
/// Whether rows can be limited by the column, and what it holds.
ColumnValues valuesOf(UrlColumn column);

/// Takes the rows out of `ids` that don't meet the limit. One that can't be read stays: whoever
/// looks at it learns that. A cancel leaves all. Throws what the database says.
Walk keepByColumn(SQLite::Database &project, const ColumnLimit &limit, TaskMonitor &task,
                  RowIds &ids);

/// What stands in a column and how often.
struct CountedValues {
    std::vector<std::pair<std::string, std::int64_t>> values; ///< the most frequent first
    bool isCut = false;                                       ///< there are more than are counted
};
/// Hears what the first rows came to: after some thousand, then after twice as many each time.
/// Rows that an index tells are counted before it hears of any.
using CountedSoFar = std::function<void(const CountedValues &counted, std::size_t rows)>;
/// Of these rows, at most `most` values. A cancel leaves those that were counted.
Walk countValues(SQLite::Database &project, const RowIds &ids, UrlColumn column, std::size_t most,
                 TaskMonitor &task, CountedValues &counted, const CountedSoFar &soFar = {});

} // namespace nv
