#include "db/DatabaseClass.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "db/KeywordLists.h"
#include "db/Schema.h"
#include "db/SqlFunctions.h"
#include "db/SqliteErrors.h"
#include "db/StoredQueries.h"

#include <fmt/format.h>

namespace nv {

namespace {

/// "NVP1" in the file header tells our files from other SQLite databases.
constexpr int kApplicationId = 0x4E565031;
constexpr int kBusyTimeout = 5000; // milliseconds

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

void requireTables(SQLite::Database &database) {
    for (const schema::Table &table : schema::projectTables())
        if (!database.tableExists(std::string(table.name)))
            throw StorageFailure(fmt::format("this is no project: it has no table {}", table.name));
}

} // namespace

DatabaseClass::DatabaseClass(FailureLog &log, const Clock &clock) : m_log(log), m_clock(clock) {}

DatabaseClass::~DatabaseClass() {
    CloseDB();
}

bool DatabaseClass::isOpen() const {
    return m_database != nullptr;
}

SQLite::Database &DatabaseClass::connection() {
    return *m_database;
}

void DatabaseClass::openConnection(int flags) {
    m_database = std::make_unique<SQLite::Database>(FilePath.string(), flags);
    m_database->setBusyTimeout(kBusyTimeout);
    if (flags & SQLite::OPEN_CREATE)
        m_database->exec(
            fmt::format("PRAGMA page_size=8192; PRAGMA application_id={}", kApplicationId));
    // 64 MB of cache. WAL lets readers in while an import writes, and with NORMAL a crash of the
    // program loses nothing that was committed.
    m_database->exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; "
                     "PRAGMA cache_size=-65536; PRAGMA foreign_keys=ON; PRAGMA trusted_schema=OFF");
    registerFunctions(*m_database);
}

bool DatabaseClass::CreateDatabaseProject() {
    const auto failure = failureOf(m_log, "DatabaseClass.CreateDatabaseProject()", [this] {
        openConnection(SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        SQLite::Transaction transaction(*m_database);
        createTables(*m_database);
        StoredQueries(*m_database).createAll(m_clock, loadKeywordLists(KeywordFolder));
        transaction.commit();
    });
    if (failure)
        m_database.reset();
    return !failure;
}

void DatabaseClass::open() {
    const auto failure = failureOf(m_log, "DatabaseClass.open()", [this] {
        openConnection(SQLite::OPEN_READWRITE);
        requireTables(*m_database);
    });
    if (!failure)
        return;
    m_database.reset();
    throw StorageFailure(fmt::format("\"{}\": {}", textOf(FilePath), *failure));
}

void DatabaseClass::CloseDB() {
    if (!m_database)
        return;
    // Back to one file. When another program still reads it, the log stays until that one closes.
    m_database->tryExec("PRAGMA optimize; PRAGMA journal_mode=DELETE");
    m_database.reset();
}

} // namespace nv
