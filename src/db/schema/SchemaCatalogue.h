#pragma once

#include "db/schema/Schema.h"

namespace SQLite {
class Database;
}

namespace nv {

/// The project's own record of its schema: tables `SchemaColumns`, `SchemaIndexes` and
/// `SchemaRelationships`. SQLite keeps no descriptions, sizes or labels and loses the names of
/// keys, and a later build compares by them.
class SchemaCatalogue {
  public:
    explicit SchemaCatalogue(SQLite::Database &database) : m_database(database) {}

    /// Makes the three tables, empty.
    void create();
    /// Makes the table with its indexes, and notes it.
    void add(const schema::Table &table);
    /// One of schema::tablesOfFirstUse(), where the project has none yet.
    void addOnFirstUse(std::string_view table);
    /// Columns that such a table got after the project made it, at its end. One that only bears the
    /// name of the table stays as it is.
    void addLaterColumns(std::string_view table);
    void noteRelationships();

  private:
    void noteColumns(const schema::Table &table);
    void noteColumn(const schema::Table &table, std::size_t ordinal);
    bool hasColumn(std::string_view table, std::string_view column);
    void noteIndex(const schema::Index &index, bool isPrimaryKey);

    SQLite::Database &m_database;
};

} // namespace nv
