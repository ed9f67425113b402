#include "views/queries/QueryBuilder.h"

#include "base/Text.h"
#include "db/schema/Schema.h"
#include "db/sql/Dialect.h"
#include "views/queries/QueryGrid.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {
namespace {

std::string_view conditionOf(std::string_view shown) {
    if (equalsNoCase(shown, "contains"))
        return "LIKE";
    return equalsNoCase(shown, "is between") ? "BETWEEN" : shown;
}

bool has(std::string_view text, char c) {
    return text.find(c) != std::string_view::npos;
}

} // namespace

void QueryBuilder::add(std::string_view field, std::string_view condition, std::string_view value) {
    field = trim(field);
    condition = conditionOf(trim(condition));
    std::string operand(trim(value));
    if (field.empty() || condition.empty() || operand.empty())
        return;
    if (equalsNoCase(condition, "like") && !has(operand, '%'))
        operand = fmt::format("%{}%", operand);
    bool isBare = has(operand, '/') && has(operand, '#');
    if (containsNoCase(field, "date") && !has(operand, '#')) {
        operand = fmt::format("#{}#", operand);
        isBare = true;
    }
    isBare = isBare || equalsNoCase(operand, "true") || equalsNoCase(operand, "false") ||
             isNumber(operand);
    const bool isFirst = toUpper(sqlText).find(" WHERE") == std::string::npos;
    sqlText += fmt::format("{}{} {} {}", isFirst ? " WHERE " : " AND ", field, condition,
                           isBare ? operand : fmt::format(" '{}'", operand));
}

std::vector<std::string> builderTables() {
    std::vector<std::string> names{"URLs"};
    for (const schema::Table &table : schema::projectTables())
        if (table.name != "URLs")
            names.emplace_back(table.name);
    return names;
}

std::vector<std::string> loadFieldNames(SQLite::Database &database, std::string_view table) {
    SQLite::Statement statement(database, "SELECT * FROM " + quotedName(table));
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(statement.getColumnCount()));
    for (int i = 0; i < statement.getColumnCount(); ++i)
        names.emplace_back(statement.getColumnName(i));
    return names;
}

bool isFavoriteName(std::string_view name) {
    return std::all_of(name.begin(), name.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code == 32 || code == 45 || code == 95 || (code >= 65 && code <= 90) ||
               (code >= 92 && code <= 122);
    });
}

} // namespace nv
