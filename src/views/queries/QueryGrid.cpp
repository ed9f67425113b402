#include "views/queries/QueryGrid.h"

#include "base/Text.h"
#include "db/schema/Schema.h"
#include "db/sql/Dialect.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace nv {
namespace {

constexpr std::string_view kAllUrls = "SELECT * FROM URLs WHERE URL_ID = 0";

struct Operator {
    std::string_view condition;
    std::string_view sql;
};
/// "DOES NOT CONTAIN" is understood though no cell offers it: older notes of examiners use it.
constexpr std::array<Operator, 11> kOperators = {{{"EQUALS", "="},
                                                  {"DOES NOT EQUAL", "<>"},
                                                  {"CONTAINS", "LIKE"},
                                                  {"BEGINS WITH", "LIKE"},
                                                  {"ENDS WITH", "LIKE"},
                                                  {"DOES NOT CONTAIN", "NOT LIKE"},
                                                  {"BETWEEN", "BETWEEN"},
                                                  {"IS GREATER THAN", ">"},
                                                  {"IS LESS THAN", "<"},
                                                  {"IS GREATER THAN OR EQUAL TO", ">="},
                                                  {"IS LESS THAN OR EQUAL TO", "<="}}};

std::string_view operatorOf(std::string_view condition) {
    const auto *found =
        std::find_if(kOperators.begin(), kOperators.end(),
                     [&](const Operator &one) { return equalsNoCase(one.condition, condition); });
    return found == kOperators.end() ? "=" : found->sql;
}

/// The longest date that a person types is shorter; "#1/1/2009# AND #2/1/2009#" is one too.
bool isMarkedDate(std::string_view value) {
    constexpr std::size_t kShortest = 10;
    return value.size() >= kShortest && value.front() == '#' && value.back() == '#';
}

std::string textFor(std::string_view condition, std::string_view value) {
    if (equalsNoCase(condition, "contains") || equalsNoCase(condition, "does not contain"))
        return fmt::format("'%{}%'", value);
    if (equalsNoCase(condition, "begins with"))
        return fmt::format("'{}%'", value);
    if (equalsNoCase(condition, "ends with"))
        return fmt::format("'%{}'", value);
    return fmt::format("'{}'", value);
}

/// A number stays bare even after LIKE: examiners know "LIKE 15" and what it finds.
std::string valueOf(std::string_view condition, std::string_view value) {
    if (parseDateLiteral(value))
        return fmt::format("#{}#", value);
    if (isMarkedDate(value) || isNumber(value))
        return std::string(value);
    if (equalsNoCase(value, "true"))
        return "True";
    if (equalsNoCase(value, "false"))
        return "False";
    return textFor(condition, value);
}

std::string conditionOf(const QueryRow &row) {
    const std::string_view condition = trim(row.condition);
    const std::string cells = fmt::format("{} {} {}", trim(row.field), operatorOf(condition),
                                          valueOf(condition, trim(row.value)));
    return fmt::format("({}) {} ", trim(cells), trim(row.joining));
}

bool isBlank(const QueryRow &row) {
    return trim(row.field).empty() && trim(row.condition).empty() && trim(row.value).empty() &&
           trim(row.joining).empty();
}

std::string orderOf(std::span<const QuerySortRow> sorts) {
    std::string order;
    for (const QuerySortRow &row : sorts) {
        if (trim(row.field).empty() || trim(row.order).empty())
            continue;
        const bool falling = equalsNoCase(trim(row.order), "descending");
        order += fmt::format("{}{} {}", order.empty() ? " ORDER BY " : ", ", trim(row.field),
                             falling ? "DESC" : "ASC");
    }
    return order;
}

} // namespace

bool isNumber(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value) &&
           !text.empty();
}

std::optional<std::string> formatQuerySQL(std::span<const QueryRow> rows,
                                          std::span<const QuerySortRow> sorts) {
    std::string conditions;
    for (const QueryRow &row : rows)
        if (!isBlank(row))
            conditions += conditionOf(row);
    if (conditions.empty())
        return std::nullopt;
    return fmt::format("SELECT * FROM URLs WHERE {}{}", conditions, orderOf(sorts));
}

std::vector<QueryField> queryFields(SQLite::Database &database) {
    const schema::Table *urls = schema::findTable("URLs");
    SQLite::Statement statement(database, std::string(kAllUrls));
    std::vector<QueryField> fields;
    for (int i = 0; i < statement.getColumnCount(); ++i) {
        const std::string name = statement.getColumnName(i);
        if (containsNoCase(name, "sys"))
            continue;
        const schema::Column *known = urls ? schema::findColumn(*urls, name) : nullptr;
        fields.push_back({name, known && known->type == schema::ColumnType::YesNo});
    }
    return fields;
}

} // namespace nv
