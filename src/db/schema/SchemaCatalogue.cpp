#include "db/schema/SchemaCatalogue.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>

#include <string>

namespace nv {

void SchemaCatalogue::create() {
    m_database.exec(
        "CREATE TABLE SchemaColumns (TableName TEXT COLLATE NOCASE, ColumnName TEXT COLLATE "
        "NOCASE, Ordinal INTEGER, Type TEXT, DefinedSize INTEGER, Label TEXT, Description TEXT, "
        "Properties TEXT, ValidationText TEXT, PRIMARY KEY (TableName, ColumnName));"
        "CREATE TABLE SchemaIndexes (TableName TEXT COLLATE NOCASE, IndexName TEXT COLLATE NOCASE, "
        "ColumnName TEXT COLLATE NOCASE, IsPrimaryKey BOOLEAN, PRIMARY KEY (TableName, IndexName));"
        "CREATE TABLE SchemaRelationships (RelationshipName TEXT COLLATE NOCASE PRIMARY KEY, "
        "FromTable TEXT COLLATE NOCASE, FromColumn TEXT COLLATE NOCASE, ToTable TEXT COLLATE "
        "NOCASE, ToColumn TEXT COLLATE NOCASE)");
}

void SchemaCatalogue::add(const schema::Table &table) {
    m_database.exec(schema::createStatement(table));
    noteColumns(table);
    if (!table.primaryKey.empty())
        noteIndex({table.primaryKey, table.name, table.columns.front().name}, true);
    for (const schema::Index &index : schema::indexes()) {
        if (index.table != table.name)
            continue;
        m_database.exec(schema::createStatement(index));
        noteIndex(index, false);
    }
    if (!table.guards.empty())
        m_database.exec(std::string(table.guards));
}

void SchemaCatalogue::addOnFirstUse(std::string_view table) {
    if (m_database.tableExists(std::string(table)))
        return;
    for (const schema::Table &known : schema::tablesOfFirstUse())
        if (known.name == table)
            add(known);
}

bool SchemaCatalogue::hasColumn(std::string_view table, std::string_view column) {
    SQLite::Statement names(m_database,
                            "SELECT 1 FROM pragma_table_info(?) WHERE name = ? COLLATE NOCASE");
    SQLite::bind(names, std::string(table), std::string(column));
    return names.executeStep();
}

void SchemaCatalogue::addLaterColumns(std::string_view table) {
    for (const schema::Table &known : schema::tablesOfFirstUse()) {
        if (known.name != table || !hasColumn(table, known.columns.front().name))
            continue;
        for (std::size_t at = 0; at < known.columns.size(); ++at) {
            const schema::Column &column = known.columns[at];
            if (hasColumn(table, column.name))
                continue;
            m_database.exec("ALTER TABLE " + std::string(table) + " ADD COLUMN " +
                            schema::columnDefinition(column));
            noteColumn(known, at);
        }
    }
}

void SchemaCatalogue::noteColumns(const schema::Table &table) {
    for (std::size_t at = 0; at < table.columns.size(); ++at)
        noteColumn(table, at);
}

void SchemaCatalogue::noteColumn(const schema::Table &table, std::size_t ordinal) {
    SQLite::Statement insert(
        m_database, "INSERT OR REPLACE INTO SchemaColumns VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)");
    const schema::Column &column = table.columns[ordinal];
    const int place = static_cast<int>(ordinal);
    SQLite::bind(insert, std::string(table.name), std::string(column.name), place,
                 std::string(schema::typeName(column.type)), column.size, std::string(column.label),
                 std::string(column.description), column.isKey ? "Autoincrement=true" : "",
                 schema::validationText(column, place));
    insert.exec();
}

void SchemaCatalogue::noteIndex(const schema::Index &index, bool isPrimaryKey) {
    SQLite::Statement insert(m_database,
                             "INSERT OR REPLACE INTO SchemaIndexes VALUES (?, ?, ?, ?)");
    SQLite::bind(insert, std::string(index.table), std::string(index.name),
                 std::string(index.column), isPrimaryKey ? 1 : 0);
    insert.exec();
}

void SchemaCatalogue::noteRelationships() {
    SQLite::Statement insert(m_database, "INSERT INTO SchemaRelationships VALUES (?, ?, ?, ?, ?)");
    for (const schema::Relationship &r : schema::relationships()) {
        SQLite::bind(insert, std::string(r.name), std::string(r.fromTable),
                     std::string(r.fromColumn), std::string(r.toTable), std::string(r.toColumn));
        insert.exec();
        insert.reset();
    }
}

} // namespace nv
