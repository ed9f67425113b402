#include "db/SqliteErrors.h"

#include "base/Files.h"

#include <sqlite3.h>

namespace nv {

void throwMeaning(const SQLite::Exception &error) {
    switch (error.getErrorCode()) {
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

} // namespace nv
