#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The columns of a SELECT that its table has, and where each one that was asked for stands in it.
struct ColumnList {
    /// `present` has lower-case names. `sql` begins with the columns of `before`, which take no
    /// place of their own in `positions`.
    ColumnList(const std::set<std::string> &present, std::span<const std::string_view> columns,
               const std::vector<std::string> &before);

    std::string sql;            ///< separated by ", "
    std::vector<int> positions; ///< 0-based; -1 for a column that the table lacks
};

} // namespace nv
