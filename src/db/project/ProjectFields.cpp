#include "db/project/ProjectFields.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/schema/Schema.h"
#include "db/sql/Dialect.h"
#include "db/sql/SqliteErrors.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <charconv>

namespace nv {

namespace {

/// The quoted name, when the schema has it.
std::string tableName(std::string_view name) {
    if (!schema::findTable(name))
        throw DialectError(fmt::format("there is no table \"{}\"", name));
    return quotedName(name);
}

const schema::Column &columnOf(std::string_view table, std::string_view name) {
    const schema::Table *known = schema::findTable(table);
    const schema::Column *column = known ? schema::findColumn(*known, name) : nullptr;
    if (!column)
        throw DialectError(fmt::format("table \"{}\" has no column \"{}\"", table, name));
    return *column;
}

std::string columnName(std::string_view table, std::string_view name) {
    return quotedName(columnOf(table, name).name);
}

std::string shown(const schema::Column &column, const SQLite::Column &value) {
    if (column.type != schema::ColumnType::Date || value.isNull())
        return std::string(trim(value.getString()));
    return formatDate(Date::fromDays(value.getDouble()),
                      fmt::format("{} {}", kDateFormat, kTimeFormat));
}

/// Numbers find their way from text by themselves; "True" and dates don't.
void bindTo(const schema::Column &column, SQLite::Statement &statement, std::string_view value) {
    const auto date = parseDateLiteral(value);
    if (column.type == schema::ColumnType::YesNo && equalsNoCase(value, "true"))
        statement.bind(1, 1);
    else if (column.type == schema::ColumnType::YesNo && equalsNoCase(value, "false"))
        statement.bind(1, 0);
    else if (column.type == schema::ColumnType::Date && value.empty())
        statement.bind(1);
    else if (column.type == schema::ColumnType::Date && date)
        statement.bind(1, date->days());
    else
        statement.bind(1, std::string(value));
}

template <class Result, class Body>
Result logged(FailureLog &log, std::string_view procedure, Result fallback, Body &&body) {
    return trapped(log, Severity::Warning, procedure, kContactSupport, std::move(fallback),
                   [&] { return onProject(std::forward<Body>(body)); });
}

} // namespace

std::string ProjectFields::getDB3Field(std::string_view field, std::string_view table,
                                       std::string_view key, std::string_view keyValue) const {
    return logged(m_log, "ADO.GetDB3Field()", std::string(), [&] {
        SQLite::Statement row(m_database, fmt::format("SELECT {} FROM {} WHERE {} = ?",
                                                      columnName(table, field), tableName(table),
                                                      columnName(table, key)));
        row.bind(1, std::string(keyValue));
        return row.executeStep() ? shown(columnOf(table, field), row.getColumn(0)) : std::string();
    });
}

bool ProjectFields::putDBField(std::string_view value, std::string_view keyValue,
                               std::string_view key, std::string_view table, std::string_view field,
                               Severity severity) {
    const std::string_view advice = severity == Severity::Low ? kNotSerious : kContactSupport;
    return trapped(m_log, severity, "ADO.PutDBField()", advice, false, [&] {
        SQLite::Statement update(m_database,
                                 fmt::format("UPDATE {} SET {} = ? WHERE {} = ?", tableName(table),
                                             columnName(table, field), columnName(table, key)));
        bindTo(columnOf(table, field), update, value);
        update.bind(2, std::string(keyValue));
        if (onProject(m_database, [&] { return update.exec(); }) > 0)
            return true;
        if (!equalsNoCase(table, "DefaultSettings"))
            throw DialectError(fmt::format("table {} has no row {}", table, keyValue));
        SQLite::Statement insert(m_database, "INSERT INTO DefaultSettings (DefaultName, "
                                             "DefaultValue) VALUES (?, ?)");
        insert.bind(1, std::string(keyValue));
        insert.bind(2, std::string(value));
        return onProject(m_database, [&] { return insert.exec(); }) == 1;
    });
}

bool ProjectFields::saveDefaultSetting(std::string_view name, std::string_view value) {
    return putDBField(value, name, "DefaultName", "DefaultSettings", "DefaultValue");
}

void ProjectFields::remember(std::string_view name, std::string_view value) {
    static_cast<void>(saveDefaultSetting(name, value));
}

std::string ProjectFields::getDefault(std::string_view name) const {
    return getDB3Field("DefaultValue", "DefaultSettings", "DefaultName", name);
}

std::vector<std::string> ProjectFields::defaultNames() const {
    return logged(m_log, "ADO.GetDB3Field()", std::vector<std::string>(), [&] {
        std::vector<std::string> names;
        SQLite::Statement row(m_database,
                              "SELECT DefaultName FROM DefaultSettings ORDER BY DefaultName");
        while (row.executeStep())
            names.push_back(row.getColumn(0).getString());
        return names;
    });
}

std::optional<std::int64_t> ProjectFields::defaultNumber(std::string_view name) const {
    const std::string text = getDefault(name);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(value) : std::nullopt;
}

} // namespace nv
