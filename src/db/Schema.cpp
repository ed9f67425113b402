#include "db/Schema.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv::schema {

namespace {

struct TypeWords {
    std::string_view name;
    std::string_view declared; ///< how the column stands in CREATE TABLE
};

TypeWords wordsOf(ColumnType type) {
    switch (type) {
    case ColumnType::Long:
        return {"Long", "INTEGER"};
    case ColumnType::Double:
        return {"Double", "DOUBLE"};
    case ColumnType::Date:
        return {"Date", "DATE"};
    case ColumnType::YesNo:
        return {"Yes/No", "BOOLEAN"};
    case ColumnType::Text:
        return {"Text", "VARCHAR"};
    case ColumnType::Memo:
        return {"Memo", "TEXT"};
    case ColumnType::Binary:
        return {"Binary", "BLOB"};
    }
    return {};
}

std::string definition(const Table &table, const Column &column) {
    std::string text = fmt::format("\"{}\" {}", column.name, wordsOf(column.type).declared);
    if (column.type == ColumnType::Text)
        text += fmt::format("({})", column.size);
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo)
        text += " COLLATE NOCASE";
    if (column.isKey)
        text += fmt::format(" CONSTRAINT \"{}\" PRIMARY KEY", table.primaryKey);
    return text;
}

} // namespace

std::string_view typeName(ColumnType type) {
    return wordsOf(type).name;
}

std::string createStatement(const Table &table) {
    std::string lines;
    for (const Column &column : table.columns)
        lines += (lines.empty() ? "    " : ",\n    ") + definition(table, column);
    for (const Relationship &r : relationships())
        if (r.toTable == table.name)
            lines += fmt::format(",\n    CONSTRAINT \"{}\" FOREIGN KEY (\"{}\") REFERENCES \"{}\" "
                                 "(\"{}\")",
                                 r.name, r.toColumn, r.fromTable, r.fromColumn);
    return fmt::format("CREATE TABLE \"{}\" (\n{}\n)", table.name, lines);
}

const Table *findTable(std::string_view name) {
    const auto tables = projectTables();
    const auto found = std::find_if(tables.begin(), tables.end(), [name](const Table &table) {
        return equalsNoCase(table.name, name);
    });
    return found == tables.end() ? nullptr : &*found;
}

const Column *findColumn(const Table &table, std::string_view name) {
    const auto found =
        std::find_if(table.columns.begin(), table.columns.end(),
                     [name](const Column &column) { return equalsNoCase(column.name, name); });
    return found == table.columns.end() ? nullptr : &*found;
}

} // namespace nv::schema
