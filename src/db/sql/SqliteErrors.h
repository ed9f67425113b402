#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <filesystem>
#include <utility>

namespace nv {

/// Throws what a database error means: a StorageFailure when the file can't be read or written any
/// more (disk full, read-only, damaged, not a database), otherwise the error itself again.
[[noreturn]] void throwMeaning(const SQLite::Exception &error);
/// The same, where the file can't be written any more with its name and its disk.
[[noreturn]] void throwMeaning(const SQLite::Database &project, const SQLite::Exception &error);
/// The bytes that were read make no sense, which says nothing of the rest of the file.
bool isDamage(const SQLite::Exception &error);
/// Throws a StorageFailure that names the file.
[[noreturn]] void throwFailureOf(const std::filesystem::path &file, const SQLite::Exception &error);

// The only places where database errors are told apart.

/// Runs `body`, which reads or writes the open project.
template <class Body>
decltype(auto) onProject(Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const SQLite::Exception &error) {
        throwMeaning(error);
    }
}

/// The same for a task that writes much: its failure names the file and the disk.
template <class Body>
decltype(auto) onProject(const SQLite::Database &project, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const SQLite::Exception &error) {
        throwMeaning(project, error);
    }
}

/// Runs `body`, which reads one row of the open project: damage of its page says nothing of other
/// rows, so it stays an error of the database.
template <class Body>
decltype(auto) onRow(Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const SQLite::Exception &error) {
        if (isDamage(error))
            throw;
        throwMeaning(error);
    }
}

/// The same for a body that writes the row, which damage of a page beside the row's own makes fail
/// too. A transaction in which that happened can only be rolled back as a whole.
template <class Body>
decltype(auto) onRow(const SQLite::Database &project, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const SQLite::Exception &error) {
        if (isDamage(error))
            throw;
        throwMeaning(project, error);
    }
}

/// Runs `body`, which opens or makes `file`: any error of the database is a StorageFailure.
template <class Body>
decltype(auto) onFile(const std::filesystem::path &file, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const SQLite::Exception &error) {
        throwFailureOf(file, error);
    }
}

} // namespace nv
