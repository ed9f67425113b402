#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "db/records/HistoryFile.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace SQLite {
class Database;
}

namespace nv {

/// By which rules an import reads its files.
enum class ReadBy { allRules, classicRules };

/// Rows of table `SourceFiles`: the artefact files that imports took up.
class SourceFiles {
  public:
    /// All must outlive this.
    SourceFiles(SQLite::Database &database, const Clock &clock, FailureLog &log,
                ReadBy rules = ReadBy::allRules)
        : m_database(database), m_clock(clock), m_log(log), m_rules(rules) {}

    /// Registers the file and gives it its SourceFile_ID. A file whose content has a row already
    /// gets that row and nothing is written: the row identifies the content, it doesn't bar it from
    /// being imported again; one that only the classic rules had read is marked as read by all when
    /// it is. The same content of another browser, profile or person is another
    /// file; a row of an earlier build, which knew nothing of them, gets those of this one. False
    /// on a failure, which is logged. Throws StorageFailure.
    [[nodiscard]] bool logFile(HistoryFile &file);

    /// Puts into the file's row what its reading has told of its origin; what isn't known leaves
    /// the row as it is. False on a failure, which is logged.
    bool noteOrigin(const HistoryFile &file);

    /// Marks the row of a file that was read to its end. False on a failure, which is logged.
    [[nodiscard]] bool setSuccessful(SourceFileId id);

  private:
    template <class Body>
    bool attempt(Body &&body);
    void writeOrigin(SourceFileId id, const Origin &origin);
    SourceFileId rowOf(const HistoryFile &file);
    SourceFileId addRow(const HistoryFile &file);
    void noteRules(SourceFileId id);
    std::unordered_map<std::string, SourceFileId> &rowsByContent();

    SQLite::Database &m_database;
    const Clock &m_clock;
    FailureLog &m_log;
    ReadBy m_rules;
    /// By keyOf(), rows of earlier builds by the hash alone. The table has no index by hash, and a
    /// cache may hold ten thousand pages, each of which would be looked for among all.
    std::optional<std::unordered_map<std::string, SourceFileId>> m_rowsByContent;
};

} // namespace nv
