#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <utility>

namespace nv {

/// Throws what a database error means: a StorageFailure when the file can't be read or written any
/// more (disk full, read-only, damaged, not a database), otherwise the error itself again.
[[noreturn]] void throwMeaning(const SQLite::Exception &error);

/// Runs `body` on the project; the only place where database errors are told apart.
template <class Body>
decltype(auto) onProject(Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const SQLite::Exception &error) {
        throwMeaning(error);
    }
}

} // namespace nv
