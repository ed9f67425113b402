#include "maintenance/ProjectShape.h"

#include "base/Text.h"
#include "db/sql/Dialect.h"
#include "db/sql/SqlTokens.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <charconv>

namespace nv {

namespace {

/// The names that `select` gives in its first column.
std::vector<std::string> namesOf(SQLite::Database &database, const std::string &select,
                                 const std::string &bound) {
    std::vector<std::string> names;
    SQLite::Statement rows(database, select);
    if (!bound.empty())
        rows.bind(1, bound);
    while (rows.executeStep())
        names.push_back(rows.getColumn(0).getString());
    return names;
}

/// "VARCHAR(50)" has 50.
std::optional<int> declaredSize(std::string_view type) {
    const std::size_t open = type.find('(');
    if (open == std::string_view::npos)
        return std::nullopt;
    int size = 0;
    const auto [end, error] =
        std::from_chars(type.data() + open + 1, type.data() + type.size(), size);
    return error == std::errc() ? std::optional(size) : std::nullopt;
}

/// What the project notes of the size of a column that declares none.
std::optional<int> notedSize(SQLite::Database &database, const std::string &table,
                             const std::string &column) {
    if (!database.tableExists("SchemaColumns"))
        return std::nullopt;
    SQLite::Statement row(database, "SELECT DefinedSize FROM SchemaColumns WHERE TableName = ? "
                                    "AND ColumnName = ?");
    row.bind(1, table);
    row.bind(2, column);
    return row.executeStep() ? std::optional(row.getColumn(0).getInt()) : std::nullopt;
}

std::vector<ColumnShape> columnsOf(SQLite::Database &database, const std::string &table) {
    std::vector<ColumnShape> columns;
    SQLite::Statement rows(database, "SELECT name, type FROM pragma_table_xinfo(?)");
    rows.bind(1, table);
    while (rows.executeStep()) {
        ColumnShape column{rows.getColumn(0).getString(),
                           declaredSize(rows.getColumn(1).getString())};
        if (!column.size)
            column.size = notedSize(database, table, column.name);
        columns.push_back(std::move(column));
    }
    return columns;
}

std::string unquoted(const Token &token) {
    if (token.kind != TokenKind::text)
        return std::string(token.inner);
    const std::string quote(1, token.source.front());
    return replaceAll(token.inner, quote + quote, quote);
}

/// SQLite keeps the names of keys nowhere but in the table's own statement.
std::vector<std::string> keysIn(const std::string &statement) {
    std::vector<std::string> keys;
    bool isName = false;
    for (const Token &token : tokensOf(statement)) {
        if (token.kind == TokenKind::blank)
            continue;
        if (isName)
            keys.push_back(unquoted(token));
        isName = token.kind == TokenKind::word && equalsNoCase(token.source, "CONSTRAINT");
    }
    return keys;
}

TableShape tableShape(SQLite::Database &database, const std::string &name) {
    TableShape table;
    table.name = name;
    table.indexes = namesOf(
        database, "SELECT name FROM pragma_index_list(?) WHERE origin = 'c' ORDER BY name", name);
    table.columns = columnsOf(database, name);
    const auto statement =
        namesOf(database, "SELECT sql FROM sqlite_master WHERE type = 'table' AND name = ?", name);
    if (!statement.empty())
        table.keys = keysIn(statement.front());
    return table;
}

} // namespace

const ColumnShape *TableShape::column(std::string_view columnName) const {
    const auto found = std::ranges::find_if(
        columns, [columnName](const ColumnShape &c) { return equalsNoCase(c.name, columnName); });
    return found == columns.end() ? nullptr : &*found;
}

const TableShape *ProjectShape::table(std::string_view tableName) const {
    const auto found = std::ranges::find_if(
        tables, [tableName](const TableShape &t) { return equalsNoCase(t.name, tableName); });
    return found == tables.end() ? nullptr : &*found;
}

ProjectShape shapeOf(SQLite::Database &database) {
    ProjectShape shape;
    // Plain tables only: reading a virtual one would run whatever stands behind it.
    const auto tables = namesOf(database,
                                "SELECT m.name FROM sqlite_master AS m JOIN pragma_table_list AS l "
                                "ON l.schema = 'main' AND l.name = m.name WHERE l.type = 'table' "
                                "AND m.name NOT LIKE 'sqlite%' ORDER BY m.rowid",
                                {});
    for (const std::string &name : tables)
        shape.tables.push_back(tableShape(database, name));
    shape.views =
        namesOf(database, "SELECT name FROM sqlite_master WHERE type = 'view' ORDER BY rowid", {});
    return shape;
}

bool holdsName(const std::vector<std::string> &names, std::string_view name) {
    return std::ranges::any_of(names,
                               [name](const std::string &n) { return equalsNoCase(n, name); });
}

} // namespace nv
