#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// A condition of the query grid, cell by cell.
struct QueryRow {
    std::string field;
    std::string condition; ///< one of kConditions
    std::string value;
    std::string joining; ///< to the next row; on the last one the examiner leaves it blank
};

struct QuerySortRow {
    std::string field;
    std::string order; ///< one of kSortOrders
};

// What the cells offer.
inline constexpr std::array<std::string_view, 11> kConditions = {" ",
                                                                 "equals",
                                                                 "does not equal",
                                                                 "contains",
                                                                 "between",
                                                                 "begins with",
                                                                 "ends with",
                                                                 "is greater than",
                                                                 "is less than",
                                                                 "is greater than or equal to",
                                                                 "is less than or equal to"};
inline constexpr std::array<std::string_view, 3> kBooleanValues = {" ", "True", "False"};
inline constexpr std::array<std::string_view, 3> kJoinings = {" ", "AND", "OR"};
inline constexpr std::array<std::string_view, 2> kSortOrders = {"ASCENDING", "DESCENDING"};

/// The statement of a query grid; nothing when no row is filled. Values are taken as they are: an
/// apostrophe in one, or a joining word after the last row, gives a statement that no check lets
/// through, so that the examiner sees what was written.
std::optional<std::string> formatQuerySQL(std::span<const QueryRow> rows,
                                          std::span<const QuerySortRow> sorts);

/// A column of `URLs` that a grid's cell offers.
struct QueryField {
    std::string name;
    bool isBoolean = false;
};
/// Those without "sys" in their name, in the table's order. Throws what the database says.
std::vector<QueryField> queryFields(SQLite::Database &database);

/// A whole text that is a number as SQL writes it: "15", "-3.5", "2e6".
bool isNumber(std::string_view text);

} // namespace nv
