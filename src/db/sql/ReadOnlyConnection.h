#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// A second connection to a project, for statements that an examiner typed: it can read and nothing
/// else, whatever the statement says. Knows the dialect's functions. Throws StorageFailure when the
/// file can't be opened or is no project.
std::unique_ptr<SQLite::Database> openReadOnly(const std::filesystem::path &project);

/// The message of a statement that was refused here, in words that tell why.
std::string meaningOf(const std::string &failure);

/// The connection was opened for reading, or its file can't be written.
bool isReadOnly(SQLite::Database &database);

/// While it lives, statements that are compiled on the project's own connection can read and
/// nothing else: stored queries come with a project that anybody may have made.
class ReadingOnly {
  public:
    explicit ReadingOnly(SQLite::Database &database);
    ~ReadingOnly();
    ReadingOnly(const ReadingOnly &) = delete;
    ReadingOnly &operator=(const ReadingOnly &) = delete;

  private:
    SQLite::Database *m_database; ///< null for a connection that can't write anyhow
};

} // namespace nv
