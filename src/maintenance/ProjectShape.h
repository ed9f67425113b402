#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

struct ColumnShape {
    std::string name;
    /// Characters; 0 for a type without a size, nothing when the project says none at all.
    std::optional<int> size;
};

/// What a comparison of two databases looks at: names and sizes, no types.
struct TableShape {
    std::string name;
    std::vector<std::string> indexes;
    std::vector<ColumnShape> columns;
    std::vector<std::string> keys; ///< primary and foreign, those with a name

    const ColumnShape *column(std::string_view columnName) const;
};

struct ProjectShape {
    std::vector<TableShape> tables; ///< in the order of their making; none of SQLite's own
    std::vector<std::string> views;

    const TableShape *table(std::string_view tableName) const;
};

/// Reads the shape from the database's own metadata; only the sizes of long texts come from what
/// the project notes of itself. Throws the database's errors.
ProjectShape shapeOf(SQLite::Database &database);

bool holdsName(const std::vector<std::string> &names, std::string_view name);

} // namespace nv
