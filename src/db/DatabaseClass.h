#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"

#include <filesystem>
#include <memory>

namespace SQLite {
class Database;
}

namespace nv {

/// The project file: one SQLite database with the documented tables, columns and stored queries.
class DatabaseClass {
  public:
    DatabaseClass(FailureLog &log, const Clock &clock);
    ~DatabaseClass();
    DatabaseClass(const DatabaseClass &) = delete;
    DatabaseClass &operator=(const DatabaseClass &) = delete;

    std::filesystem::path FilePath;
    /// Where the term lists of the keyword queries lie; read when a project is made.
    std::filesystem::path KeywordFolder;

    /// Makes the file at FilePath with the whole schema, and leaves it open. False on a failure,
    /// which is logged; what was written stays on disk, and the next making needs it deleted.
    bool CreateDatabaseProject();
    /// Opens the file at FilePath. Throws StorageFailure, saying what is wrong with the file.
    void open();
    /// Commits, brings the file into its one-file form and closes it. Does nothing when closed.
    void CloseDB();
    bool isOpen() const;
    /// The one connection; only while open.
    SQLite::Database &connection();

  private:
    void openConnection(int flags);

    FailureLog &m_log;
    const Clock &m_clock;
    std::unique_ptr<SQLite::Database> m_database;
};

} // namespace nv
