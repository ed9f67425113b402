#include "db/ProjectFields.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/Dialect.h"
#include "db/Schema.h"
#include "db/SqliteErrors.h"

#include <SQLiteCpp/SQLiteCpp.h>
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

std::string columnName(std::string_view table, std::string_view name) {
    const schema::Table *known = schema::findTable(table);
    if (!known || !schema::findColumn(*known, name))
        throw DialectError(fmt::format("table \"{}\" has no column \"{}\"", table, name));
    return quotedName(name);
}

template <class Result, class Body>
Result logged(FailureLog &log, std::string_view procedure, Result fallback, Body &&body) {
    return trapped(log, Severity::Warning, procedure, kContactSupport, std::move(fallback),
                   [&] { return onProject(std::forward<Body>(body)); });
}

} // namespace

std::string ProjectFields::GetDB3Field(std::string_view field, std::string_view table,
                                       std::string_view key, std::string_view keyValue) const {
    return logged(m_log, "ADO.GetDB3Field()", std::string(), [&] {
        SQLite::Statement row(m_database, fmt::format("SELECT {} FROM {} WHERE {} = ?",
                                                      columnName(table, field), tableName(table),
                                                      columnName(table, key)));
        row.bind(1, std::string(keyValue));
        return row.executeStep() ? std::string(trim(row.getColumn(0).getString())) : std::string();
    });
}

std::int64_t ProjectFields::GetRecordCount(std::string_view column, std::string_view table) const {
    return logged(m_log, "ADO.GetRecordCount()", std::int64_t{0}, [&] {
        return m_database
            .execAndGet(fmt::format("SELECT Count({}) As RecCount FROM {}",
                                    columnName(table, column), tableName(table)))
            .getInt64();
    });
}

bool ProjectFields::PutDBField(std::string_view value, std::string_view keyValue,
                               std::string_view key, std::string_view table, std::string_view field,
                               Severity severity) {
    const std::string_view advice = severity == Severity::Low ? kNotSerious : kContactSupport;
    return trapped(m_log, severity, "ADO.PutDBField()", advice, false, [&] {
        SQLite::Statement update(m_database,
                                 fmt::format("UPDATE {} SET {} = ? WHERE {} = ?", tableName(table),
                                             columnName(table, field), columnName(table, key)));
        update.bind(1, std::string(value));
        update.bind(2, std::string(keyValue));
        if (onProject([&] { return update.exec(); }) > 0)
            return true;
        if (!equalsNoCase(table, "DefaultSettings"))
            throw DialectError(fmt::format("table {} has no row {}", table, keyValue));
        SQLite::Statement insert(m_database, "INSERT INTO DefaultSettings VALUES (?, ?)");
        insert.bind(1, std::string(keyValue));
        insert.bind(2, std::string(value));
        return onProject([&] { return insert.exec(); }) == 1;
    });
}

bool ProjectFields::SaveDefaultSetting(std::string_view name, std::string_view value) {
    return PutDBField(value, name, "DefaultName", "DefaultSettings", "DefaultValue");
}

std::string ProjectFields::GetDefault(std::string_view name) const {
    return GetDB3Field("DefaultValue", "DefaultSettings", "DefaultName", name);
}

std::optional<std::int64_t> ProjectFields::defaultNumber(std::string_view name) const {
    const std::string text = GetDefault(name);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(value) : std::nullopt;
}

} // namespace nv
