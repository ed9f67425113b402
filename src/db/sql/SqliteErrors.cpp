#include "db/sql/SqliteErrors.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "db/sql/Damage.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace nv {

namespace {

constexpr int kPrimaryCode = 0xFF; // the rest of a code says more than is needed here

/// What the database calls "malformed" and the like, for people.
std::string wordsOf(const SQLite::Exception &error) {
    switch (error.getErrorCode() & kPrimaryCode) {
    case SQLITE_CORRUPT:
        return fmt::format("the project is damaged or cut short ({})", error.what());
    case SQLITE_NOTADB:
        return fmt::format("this is no project ({})", error.what());
    case SQLITE_BUSY:
        return fmt::format("another program is writing to it, and goes on; try again later ({})",
                           error.what());
    default:
        return error.what();
    }
}

bool meansStorage(const SQLite::Exception &error) {
    switch (error.getErrorCode() & kPrimaryCode) {
    case SQLITE_FULL:
    case SQLITE_READONLY:
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PERM:
        return true;
    default:
        return false;
    }
}

} // namespace

void throwMeaning(const SQLite::Exception &error) {
    if (meansStorage(error))
        throw StorageFailure(wordsOf(error));
    throw SQLite::Exception(error);
}

void throwMeaning(const SQLite::Database &project, const SQLite::Exception &error) {
    if (!meansStorage(error))
        throw SQLite::Exception(error);
    const std::filesystem::path file = project.getFilename();
    throw StorageFailure(fmt::format("\"{}\" on the disk \"{}\": {}", textOf(file),
                                     textOf(diskOf(file)), wordsOf(error)));
}

bool isDamage(const SQLite::Exception &error) {
    return (error.getErrorCode() & kPrimaryCode) == SQLITE_CORRUPT;
}

bool unlessDamaged(const std::function<void()> &body) {
    try {
        body();
        return true;
    } catch (const SQLite::Exception &error) {
        if (!isDamage(error))
            throw;
        return false;
    }
}

void throwFailureOf(const std::filesystem::path &file, const SQLite::Exception &error) {
    throw StorageFailure(fmt::format("\"{}\": {}", textOf(file), wordsOf(error)));
}

} // namespace nv
