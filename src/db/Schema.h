#pragma once

#include <span>
#include <string>
#include <string_view>

namespace nv::schema {

/// Long is a signed integer, Date days since 1899-12-30 as a float, YesNo 0 or 1, Memo a text
/// without limit. The size of a Text is kept for comparing projects; texts are never cut by it,
/// since evidence must not be lost to a width.
enum class ColumnType { Long, Double, Date, YesNo, Text, Memo, Binary };

struct Column {
    std::string_view name;
    ColumnType type;
    int size;   ///< characters, 0 for none
    bool isKey; ///< numbered by the database, from 1
    std::string_view label;
    std::string_view description; ///< part of the project, misspellings included
};

struct Table {
    std::string_view name;
    std::string_view primaryKey; ///< the key's documented name; empty for none
    std::span<const Column> columns;
};

struct Relationship {
    std::string_view name;
    std::string_view fromTable;
    std::string_view fromColumn;
    std::string_view toTable;
    std::string_view toColumn;
};

/// The tables of a new project, in the order of their making.
std::span<const Table> projectTables();
/// Made on first use only.
const Table &flaggedUrls();
const Table &keywordFlags();
/// The tables of the scratch file of a Mork history.
std::span<const Table> morkTables();
/// In the order of their making.
std::span<const Relationship> relationships();

const Table *findTable(std::string_view name);
const Column *findColumn(const Table &table, std::string_view name);

std::string_view typeName(ColumnType type);
/// CREATE TABLE with the documented names; relationships that end in the table are its foreign
/// keys.
std::string createStatement(const Table &table);

} // namespace nv::schema
