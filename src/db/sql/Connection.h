#pragma once

#include <filesystem>
#include <memory>

namespace SQLite {
class Database;
}

namespace nv {

enum class Access {
    create, ///< a new file; one that is there already is not touched
    write,
    note, ///< for a few short entries: the file keeps the form that it has, which `write` changes
    read,
};

/// Opens a file that the program made, with the dialect's functions and the settings that all
/// connections share. A file that is there may come from anybody: its triggers never run, and its
/// views reach no function with side effects. Throws StorageFailure that names the file and says
/// what is wrong.
std::unique_ptr<SQLite::Database> connect(const std::filesystem::path &file, Access access);

/// Throws StorageFailure when the file's header doesn't say that this program made it. Reads bytes
/// and opens nothing: a database that is opened takes up what lies in the journal beside it, and a
/// file of somebody else's mustn't change.
void checkIsProject(const std::filesystem::path &file);

/// Opens a project that must be there: a file of another program, or one without table `URLs`, is
/// refused before anything is written to it. What is opened for reading keeps every byte, but where
/// a program was killed while it wrote: its write is rolled back first, as whoever writes next
/// would.
std::unique_ptr<SQLite::Database> connectToProject(const std::filesystem::path &file,
                                                   Access access);

} // namespace nv
