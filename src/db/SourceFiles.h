#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "db/HistoryFile.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace SQLite {
class Database;
}

namespace nv {

/// Rows of table `SourceFiles`: the artefact files that imports took up.
class SourceFiles {
  public:
    /// All must outlive this.
    SourceFiles(SQLite::Database &database, const Clock &clock, FailureLog &log)
        : m_database(database), m_clock(clock), m_log(log) {}

    /// Registers the file and gives it its SourceFile_ID. A file whose content has a row already
    /// gets that row and nothing is written: the row identifies the content, it doesn't bar it from
    /// being imported again. False on a failure, which is logged. Throws StorageFailure.
    [[nodiscard]] bool logFile(HistoryFile &file);

    /// Marks the row of a file that was read to its end. False on a failure, which is logged.
    [[nodiscard]] bool setSuccessful(SourceFileId id);

  private:
    template <class Body>
    bool attempt(Body &&body);
    SourceFileId rowOf(const HistoryFile &file);
    SourceFileId addRow(const HistoryFile &file);
    std::unordered_map<std::string, SourceFileId> &rowsByHash();

    SQLite::Database &m_database;
    const Clock &m_clock;
    FailureLog &m_log;
    /// By MD5 in lower case. The table has no index by hash, and a cache may hold ten thousand
    /// pages, each of which would be looked for among all.
    std::optional<std::unordered_map<std::string, SourceFileId>> m_rowsByHash;
};

} // namespace nv
