#pragma once

#include "time/Date.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

struct TrailEnd;

inline constexpr const char *kCaseTrailTable = "AuditTrail";

/// One thing that was done with a project.
struct TrailEntry {
    std::int64_t trailID = 0; ///< in order of the doing
    Date actionDateUTC;
    std::string action; ///< "Import", "Rebuild", ...
    std::string detail; ///< for people
    std::string filePath;
    std::int64_t fileSize = 0; ///< bytes
    std::string md5Hash;       ///< both empty when no file was read or written
    std::string sha256Hash;
    std::int64_t rowCount = 0;
    std::string appVersion;
    std::string previousHash; ///< of the entry before; both are filled in when it is added, and
    std::string entryHash;    ///< empty in entries of earlier versions: see TrailChain
};

/// The case trail: what was done with a project, when, on which file and by which version. Entries
/// are added and never changed; the database itself refuses that. Its table is made on first use.
/// Errors of the database are thrown; a project that can't be written gives a StorageFailure.
class CaseTrail {
  public:
    explicit CaseTrail(SQLite::Database &database) : m_database(database) {}

    /// All but the key, which the database gives, and the hashes, which chain it to the one before.
    void add(const TrailEntry &entry);
    /// In order of the doing.
    std::vector<TrailEntry> entries() const;
    void forEach(const std::function<void(const TrailEntry &)> &take) const;
    /// Of the newest entry; 0 without any.
    std::int64_t lastID() const;
    /// Whether its table has hashes: those of earlier versions have none.
    bool isChained() const;

  private:
    std::string lastHash() const;
    std::int64_t unchainedBefore(bool wasChained) const;
    bool isInTrail(const TrailEnd &end) const;

    SQLite::Database &m_database;
};

} // namespace nv
