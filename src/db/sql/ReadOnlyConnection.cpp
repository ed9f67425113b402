#include "db/sql/ReadOnlyConnection.h"

#include "base/Text.h"
#include "db/sql/Connection.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

namespace nv {

namespace {

/// The database asks this for everything that a statement would do, before it runs.
int allowReading(void *, int action, const char *, const char *second, const char *, const char *) {
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_RECURSIVE:
        return SQLITE_OK;
    case SQLITE_FUNCTION:
        return second && equalsNoCase(second, "load_extension") ? SQLITE_DENY : SQLITE_OK;
    default:
        return SQLITE_DENY;
    }
}

} // namespace

std::unique_ptr<SQLite::Database> openReadOnly(const std::filesystem::path &project) {
    auto database = connectToProject(project, Access::read);
    sqlite3_set_authorizer(database->getHandle(), allowReading, nullptr);
    return database;
}

std::string meaningOf(const std::string &failure) {
    return failure == "not authorized"
               ? "not authorized: a query only reads the project, with SELECT"
               : failure;
}

bool isReadOnly(SQLite::Database &database) {
    return sqlite3_db_readonly(database.getHandle(), "main") == 1;
}

ReadingOnly::ReadingOnly(SQLite::Database &database)
    : m_database(isReadOnly(database) ? nullptr : &database) {
    if (m_database)
        sqlite3_set_authorizer(m_database->getHandle(), allowReading, nullptr);
}

ReadingOnly::~ReadingOnly() {
    if (m_database)
        sqlite3_set_authorizer(m_database->getHandle(), nullptr, nullptr);
}

} // namespace nv
