#include "db/DatabaseClass.h"

#include <sqlite3.h>

#include <fmt/format.h>

#include "base/Files.h"
#include "base/Trap.h"
#include "db/Schema.h"
#include "db/SqliteErrors.h"

namespace nv {

namespace {

/// "NVP1" in the file header tells our files from other SQLite databases.
constexpr int kApplicationId = 0x4E565031;
constexpr int kBusyTimeout = 5000; // milliseconds

void setUp(SQLite::Database &database) {
    database.setBusyTimeout(kBusyTimeout);
    // 64 MB of cache; WAL lets readers in while an import writes, NORMAL loses nothing to a crash
    // of the program.
    database.exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA cache_size=-65536; "
                  "PRAGMA foreign_keys=ON; PRAGMA trusted_schema=OFF");
}

void describeTable(SQLite::Database &database, const schema::Table &table) {
    SQLite::Statement insert(database, "INSERT INTO SchemaColumns VALUES (?, ?, ?, ?, ?, ?, ?)");
    int ordinal = 0;
    for (const schema::Column &column : table.columns) {
        insert.bind(1, std::string(table.name));
        insert.bind(2, std::string(column.name));
        insert.bind(3, ordinal++);
        insert.bind(4, std::string(schema::typeName(column.type)));
        insert.bind(5, column.size);
        insert.bind(6, std::string(column.label));
        insert.bind(7, std::string(column.description));
        insert.exec();
        insert.reset();
    }
}

void createTables(SQLite::Database &database) {
    database.exec("CREATE TABLE SchemaColumns (TableName TEXT COLLATE NOCASE, ColumnName TEXT "
                  "COLLATE NOCASE, Ordinal INTEGER, Type TEXT, DefinedSize INTEGER, Label TEXT, "
                  "Description TEXT, PRIMARY KEY (TableName, ColumnName))");
    for (const schema::Table &table : schema::projectTables()) {
        database.exec(schema::createStatement(table));
        describeTable(database, table);
    }
    database.exec("CREATE INDEX URLIndex ON URLs (URL)");
}

} // namespace

DatabaseClass::DatabaseClass(FailureLog &log, const Clock &clock) : m_log(log), m_clock(clock) {}

DatabaseClass::~DatabaseClass() { CloseDB(); }

bool DatabaseClass::isOpen() const { return m_database != nullptr; }

SQLite::Database &DatabaseClass::connection() { return *m_database; }

bool DatabaseClass::CreateDatabaseProject() {
    const auto failure =
        failureOf(m_log, "DatabaseClass.CreateDatabaseProject()", [this] {
            m_database = std::make_unique<SQLite::Database>(
                FilePath.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
            m_database->exec(fmt::format("PRAGMA page_size=8192; PRAGMA application_id={}",
                                         kApplicationId));
            setUp(*m_database);
            SQLite::Transaction transaction(*m_database);
            createTables(*m_database);
            createStoredQueries(*m_database, m_clock);
            transaction.commit();
        });
    if (failure)
        m_database.reset();
    return !failure;
}

} // namespace nv
