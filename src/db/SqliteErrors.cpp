#include "db/SqliteErrors.h"

#include "base/Files.h"

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
        return fmt::format("another program is writing to it ({})", error.what());
    default:
        return error.what();
    }
}

} // namespace

void throwMeaning(const SQLite::Exception &error) {
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
        throw StorageFailure(wordsOf(error));
    default:
        throw SQLite::Exception(error);
    }
}

bool isDamage(const SQLite::Exception &error) {
    return (error.getErrorCode() & kPrimaryCode) == SQLITE_CORRUPT;
}

void throwFailureOf(const std::filesystem::path &file, const SQLite::Exception &error) {
    throw StorageFailure(fmt::format("\"{}\": {}", textOf(file), wordsOf(error)));
}

} // namespace nv
