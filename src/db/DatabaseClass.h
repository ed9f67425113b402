#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "db/Connection.h"

#include <filesystem>
#include <memory>

namespace SQLite {
class Database;
}

namespace nv {

namespace schema {
struct Table;
}

/// The project file: one SQLite database with tables, columns and stored queries
/// (docs/formats/project-file.md).
class DatabaseClass {
  public:
    DatabaseClass(FailureLog &log, const Clock &clock);
    ~DatabaseClass();
    DatabaseClass(const DatabaseClass &) = delete;
    DatabaseClass &operator=(const DatabaseClass &) = delete;

    std::filesystem::path FilePath;
    /// The examiner's page templates (rebuild/); no table of theirs lies in a project.
    std::filesystem::path TemplatesDBFilePath;
    /// Where the term lists of the keyword queries lie; read when a project is made.
    std::filesystem::path KeywordFolder;
    /// The examiner's own lists, which stand in for those of the same name there.
    std::filesystem::path AgencyKeywordFolder;

    /// Makes the file at FilePath with the whole schema, and leaves it open. False on a failure,
    /// which is logged; what was written stays on disk. A file that is there isn't touched: the
    /// caller deletes it first.
    [[nodiscard]] bool CreateDatabaseProject();
    /// Makes a scratch file for a Mork history, over one that is there, and closes it. Needs no
    /// project. False on a failure, which is logged.
    [[nodiscard]] bool CreateMorkFileParser(const std::filesystem::path &file);
    /// Fills table `KeywordFlags`, made on first use, with the term lists that the keyword queries
    /// look for. Flags that are there stay as they are. False on a failure, which is logged.
    [[nodiscard]] bool PopulateKeywordFlags();
    /// Makes table `FlaggedURLs`, which no new project has. False on a failure, which is logged.
    [[nodiscard]] bool CreateFlaggedURLs();

    /// Opens the file at FilePath. Throws StorageFailure, saying what is wrong with the file. What
    /// is opened for reading keeps every byte, so that its hash stays that of the day it was filed.
    void open(Access access = Access::write);
    /// Rolls a pending transaction back, brings the project into its one-file form and closes it.
    /// Does nothing when closed. Statements on the connection must be gone by then.
    void CloseDB();
    bool isOpen() const;
    /// Opened for reading only.
    bool isReadOnly() const;
    /// The one connection; only while open.
    SQLite::Database &connection();

  private:
    void fillNewProject();
    void addOnFirstUse(const schema::Table &table);

    FailureLog &m_log;
    const Clock &m_clock;
    std::unique_ptr<SQLite::Database> m_database;
};

} // namespace nv
