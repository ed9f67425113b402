#include "readers/sqlite/ColumnList.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <cstddef>

namespace nv {

ColumnList::ColumnList(const std::set<std::string> &present,
                       std::span<const std::string_view> columns,
                       const std::vector<std::string> &before)
    : sql(fmt::format("{}", fmt::join(before, ", "))) {
    int next = static_cast<int>(before.size());
    for (const std::string_view column : columns) {
        const bool has = present.contains(toLower(column));
        positions.push_back(has ? next++ : -1);
        if (has)
            sql += fmt::format("{}\"{}\"", sql.empty() ? "" : ", ", column);
    }
}

} // namespace nv
