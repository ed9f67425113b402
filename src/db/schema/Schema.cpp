#include "db/schema/Schema.h"

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
    case ColumnType::Variant:
        // A declared type would turn texts of digits into numbers.
        return {"Variant", ""};
    }
    return {};
}

std::string definition(const Table &table, const Column &column) {
    const std::string_view declared = wordsOf(column.type).declared;
    std::string text =
        fmt::format("\"{}\"{}{}", column.name, declared.empty() ? "" : " ", declared);
    if (column.type == ColumnType::Text)
        text += fmt::format("({})", column.size);
    if (column.type == ColumnType::Text || column.type == ColumnType::Memo ||
        column.type == ColumnType::Variant)
        text += " COLLATE NOCASE";
    // A row that a tool adds without the flag is a plain No, and not neither of both.
    if (column.type == ColumnType::YesNo)
        text += " DEFAULT 0";
    // With AUTOINCREMENT a number is never given twice: a report's record number must not name
    // another record after a deletion.
    if (column.isKey)
        text += fmt::format(" CONSTRAINT \"{}\" PRIMARY KEY AUTOINCREMENT", table.primaryKey);
    return text;
}

std::string foreignKey(const Relationship &r) {
    // A rebuild empties a page's tags before it fills them anew; their options go with them. Facts
    // are part of their record.
    const bool owned = r.toTable == "TagOptions" || r.toTable == "RecordFacts";
    return fmt::format("CONSTRAINT \"{}\" FOREIGN KEY (\"{}\") REFERENCES \"{}\" (\"{}\"){}",
                       r.name, r.toColumn, r.fromTable, r.fromColumn,
                       owned ? " ON DELETE CASCADE" : "");
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
            lines += ",\n    " + foreignKey(r);
    return fmt::format("CREATE TABLE \"{}\" (\n{}\n)", table.name, lines);
}

std::string columnDefinition(const Column &column) {
    return definition({}, column);
}

std::string createStatement(const Index &index) {
    return fmt::format("CREATE INDEX \"{}\" ON \"{}\" (\"{}\")", index.name, index.table,
                       index.column);
}

std::string validationText(const Column &column, int order) {
    constexpr int kWidth = 1000;
    if (column.label.empty())
        return {};
    return fmt::format("show:{:02}:{:05}:{}", order, kWidth, column.label);
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
