#include "db/ReadOnlyConnection.h"

#include "base/Files.h"
#include "base/Text.h"
#include "db/SqlFunctions.h"
#include "db/SqliteErrors.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <string_view>

namespace nv {

namespace {

constexpr int kBusyTimeout = 5000; // milliseconds

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
    auto database = onProject([&project] {
        auto opened = std::make_unique<SQLite::Database>(project.string(), SQLite::OPEN_READONLY);
        opened->setBusyTimeout(kBusyTimeout);
        opened->exec("PRAGMA trusted_schema=OFF");
        if (!opened->tableExists("URLs"))
            throw StorageFailure(
                fmt::format("\"{}\" is no project: it has no table URLs", textOf(project)));
        return opened;
    });
    registerFunctions(*database);
    sqlite3_set_authorizer(database->getHandle(), allowReading, nullptr);
    return database;
}

} // namespace nv
