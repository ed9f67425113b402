#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "db/sql/Connection.h"

#include <filesystem>
#include <memory>

namespace SQLite {
class Database;
}

namespace nv {

/// The project file: one SQLite database with tables, columns and stored queries
/// (docs/formats/project-file.md).
class ProjectDatabase {
  public:
    ProjectDatabase(FailureLog &log, const Clock &clock);
    ~ProjectDatabase();
    ProjectDatabase(const ProjectDatabase &) = delete;
    ProjectDatabase &operator=(const ProjectDatabase &) = delete;

    std::filesystem::path filePath;
    /// The examiner's page templates (rebuild/); no table of theirs lies in a project.
    std::filesystem::path templatesDBFilePath;
    /// Where the term lists of the keyword queries lie; read when a project is made.
    std::filesystem::path keywordFolder;
    /// The examiner's own lists, which stand in for those of the same name there.
    std::filesystem::path agencyKeywordFolder;

    /// Makes the file at filePath with the whole schema, and leaves it open. False on a failure,
    /// which is logged; what was written stays on disk. A file that is there isn't touched: the
    /// caller deletes it first.
    [[nodiscard]] bool createDatabaseProject();

    /// Opens the file at filePath. Throws StorageFailure, saying what is wrong with the file. What
    /// is opened for reading keeps every byte, so that its hash stays that of the day it was filed;
    /// a write that was cut short is rolled back first.
    void open(Access access = Access::write);
    /// Rolls a pending transaction back, brings the project into its one-file form and closes it.
    /// Does nothing when closed. Statements on the connection must be gone by then.
    void closeDB();
    bool isOpen() const;
    /// Opened for reading only.
    bool isReadOnly() const;
    /// The one connection; only while open.
    SQLite::Database &connection();

  private:
    void fillNewProject();

    FailureLog &m_log;
    const Clock &m_clock;
    std::unique_ptr<SQLite::Database> m_database;
};

} // namespace nv
