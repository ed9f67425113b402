#pragma once

#include "db/schema/Ids.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>

namespace SQLite {
class Database;
}

namespace nv {

/// Whose the file is that a record comes from.
struct FileProfile {
    std::string browser;
    std::string profile;
    std::string person;
    std::string file; ///< its path in the evidence
    /// The folder of the person, else of the profile, that the file lies in: the same words on two
    /// computers mean two people. The file's own path where it lies in none of them.
    std::string place;

    /// Nobody knows that two caches are one profile's when nothing says whose they are.
    bool isKnown() const { return !profile.empty() || !person.empty(); }
    /// "Firefox, abcd1234.default, ada: /evidence/...", for people.
    std::string text() const;
};

/// Tells profiles apart. Keeps what it has found. Errors of the database are thrown.
class RecordProfiles {
  public:
    explicit RecordProfiles(SQLite::Database &project);
    ~RecordProfiles();
    RecordProfiles(const RecordProfiles &) = delete;
    RecordProfiles &operator=(const RecordProfiles &) = delete;

    /// Of a row of SourceFiles; all empty where nothing is known.
    const FileProfile &of(std::int64_t source);
    /// Of the file that the record comes from; empty for no record.
    std::string textOf(UrlId record);
    bool isSame(std::int64_t one, std::int64_t other);

  private:
    struct Rows;

    SQLite::Database &m_project;
    std::unique_ptr<Rows> m_rows;
    std::unordered_map<std::int64_t, FileProfile> m_known;
};

} // namespace nv
