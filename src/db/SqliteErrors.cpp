#include "db/SqliteErrors.h"

#include "base/Files.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace nv {

void throwMeaning(const SQLite::Exception &error) {
    constexpr int kPrimaryCode = 0xFF; // the rest of a code says more than is needed here
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
        throw StorageFailure(error.what());
    default:
        throw SQLite::Exception(error);
    }
}

void throwFailureOf(const std::filesystem::path &file, const SQLite::Exception &error) {
    throw StorageFailure(fmt::format("\"{}\": {}", textOf(file), error.what()));
}

} // namespace nv
