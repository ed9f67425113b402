#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace nv::schema {

/// Long is a signed integer, Date days since 1899-12-30 as a float, YesNo 0 or 1, Memo a text
/// without limit, Variant a number or a text as it was given. The size of a Text is kept for
/// comparing projects; texts are never cut by it, since evidence must not be lost to a width.
enum class ColumnType { Long, Double, Date, YesNo, Text, Memo, Binary, Variant };

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
    std::string_view primaryKey; ///< the key's name in the catalogue; empty for none
    std::span<const Column> columns;
    std::string_view guards = {}; ///< SQL that is run once the table stands; empty for none
};

struct Relationship {
    std::string_view name;
    std::string_view fromTable;
    std::string_view fromColumn;
    std::string_view toTable;
    std::string_view toColumn;
};

struct Index {
    std::string_view name;
    std::string_view table;
    std::string_view column;
};

/// How many tables are made before the stored queries, the rest after them.
inline constexpr std::size_t kTablesBeforeQueries = 7;

/// The tables of a new project, in the order of their making.
std::span<const Table> projectTables();
/// Those that a project gets when something is first kept in them. A fix moves them too.
std::span<const Table> tablesOfFirstUse();
/// In the order of their making.
std::span<const Relationship> relationships();
/// Besides the keys. A relationship that is followed from its parent has one of its own name.
std::span<const Index> indexes();

const Table *findTable(std::string_view name);
const Column *findColumn(const Table &table, std::string_view name);

std::string_view typeName(ColumnType type);
/// What the project says of a column for tables that show it: "show:", two digits of its order,
/// five of its width in twips, its label. Empty without a label.
std::string validationText(const Column &column, int order);
/// CREATE TABLE with the names of the table; relationships that end in it are its foreign keys.
std::string createStatement(const Table &table);
std::string createStatement(const Index &index);
/// Of a column that is no key, as CREATE TABLE and ADD COLUMN take it.
std::string columnDefinition(const Column &column);

} // namespace nv::schema
