#pragma once

#include <SQLiteCpp/Database.h>

#include <filesystem>

namespace nv::test {

/// Writes Chromium's "History" of one visit as a browser at work leaves it: the visit stands in
/// "History-wal" alone. `live` is room for the database while it is open; both files go into
/// `profile`.
inline void writeLiveHistory(const std::filesystem::path &live,
                             const std::filesystem::path &profile) {
    std::filesystem::create_directories(live);
    std::filesystem::create_directories(profile);
    SQLite::Database file((live / "History").string(),
                          SQLite::OPEN_CREATE | SQLite::OPEN_READWRITE);
    file.exec("PRAGMA journal_mode = wal");
    file.exec("CREATE TABLE urls (id INTEGER PRIMARY KEY, url TEXT, title TEXT, visit_count "
              "INTEGER, typed_count INTEGER, last_visit_time INTEGER, hidden INTEGER);"
              "CREATE TABLE visits (id INTEGER PRIMARY KEY, url INTEGER, visit_time INTEGER, "
              "from_visit INTEGER, transition INTEGER, visit_duration INTEGER);"
              "PRAGMA wal_checkpoint(TRUNCATE);"
              "INSERT INTO urls VALUES (7, 'http://a.example/page', 'A page', 1, 1, "
              "12943324800123456, 0);"
              "INSERT INTO visits VALUES (3, 7, 12943324800123456, 0, 1, 0)");
    for (const char *name : {"History", "History-wal"}) // before closing takes the log away
        std::filesystem::copy_file(live / name, profile / name);
}

} // namespace nv::test
