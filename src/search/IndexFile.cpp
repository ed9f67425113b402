#include "search/IndexFile.h"

#include "base/Files.h"
#include "db/sql/SideFiles.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <string_view>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kMagic("SQLite format 3\0", 16);
constexpr std::size_t kHead = 100; // bytes
constexpr std::uint64_t kChangesAt = 24;
constexpr std::uint64_t kFormAt = 60;
constexpr std::uint64_t kIdAt = 68;
constexpr std::uint32_t kApplicationId = 0x4E565331; // "NVS1"
/// Another number makes each index anew: count it up when what is indexed changes.
constexpr std::uint32_t kForm = 3;
/// Texts that are gathered before they are written as a piece of the index.
constexpr int kHashBytes = 64 << 20;
/// So many pieces lie side by side before they are made one, which takes a third of the making; a
/// search asks each of them.
constexpr int kPieces = 64; // FTS5 takes no more
/// Then all are made one at once, however long it takes, and what they took up stays in the file as
/// free pages. Up to there, pieces are made one a little with each that is added, and the pages of
/// those that are done are used again: so it must lie far above.
constexpr int kMostPieces = 512;

/// Values are cut into runs of three letters, so that any part is found; texts into words. No text
/// is kept: hits are read from the project.
constexpr const char *kTables =
    "CREATE TABLE Facts (Name TEXT PRIMARY KEY, Value TEXT) WITHOUT ROWID;"
    "CREATE TABLE Rows (URL_ID INTEGER PRIMARY KEY, Round INTEGER, Print INTEGER, Host TEXT, "
    "Browser TEXT, CacheType TEXT, ActionDateUTC REAL);"
    "CREATE TABLE Dead (Doc INTEGER PRIMARY KEY);"
    "CREATE TABLE Unread (URL_ID INTEGER PRIMARY KEY);"
    "CREATE VIRTUAL TABLE Brief USING fts5(Text, content='', columnsize=0, tokenize='trigram');"
    "CREATE VIRTUAL TABLE Words USING fts5(Page, Headers, content='', columnsize=0, "
    "tokenize='unicode61 remove_diacritics 2');";

/// What is looked up lies together and is read once: more of it in memory than some of its inner
/// pages makes no search quicker.
constexpr int kCacheOfReaders = 8 << 10; // KB
/// FTS5 gathers what is to be written itself, and writes each page once.
constexpr int kCacheOfMakers = 16 << 10;

std::unique_ptr<SQLite::Database> connected(const fs::path &file, int flags, int cache,
                                            int patience) {
    auto database = std::make_unique<SQLite::Database>(fs::absolute(file).string(),
                                                       flags | SQLite::OPEN_NOMUTEX, patience);
    sqlite3 *handle = database->getHandle();
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    database->tryExec(fmt::format("PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON; "
                                  "PRAGMA cache_size=-{}",
                                  cache));
    return database;
}

std::string partOfStamp(const fs::path &file) {
    std::error_code none;
    const auto size = fs::file_size(file, none);
    if (none || size == 0)
        return "-";
    const auto date = fs::last_write_time(file, none).time_since_epoch().count();
    return fmt::format("{}/{}", size, date);
}

} // namespace

fs::path indexBeside(const fs::path &project) {
    fs::path file = project;
    file += ".search";
    return file;
}

std::string stampOf(const fs::path &project) {
    const Bytes head = readHead(project, kHead);
    const std::uint32_t changes = head.size() == kHead ? ByteView(head).u32be(kChangesAt) : 0;
    return fmt::format("{} {} {} {}", changes, partOfStamp(project),
                       partOfStamp(sideFile(project, kLogSuffix)),
                       partOfStamp(sideFile(project, kJournalSuffix)));
}

namespace index_file {

Look look(const fs::path &file) {
    std::error_code none;
    const auto type = fs::symlink_status(file, none).type();
    if (type == fs::file_type::not_found)
        return Look::none;
    if (type != fs::file_type::regular)
        return Look::foreign;
    if (fs::file_size(file, none) == 0)
        return Look::none;
    const Bytes bytes = readHead(file, kHead);
    const ByteView head(bytes);
    if (head.size() < kHead || !head.raw().starts_with(kMagic) ||
        head.u32be(kIdAt) != kApplicationId)
        return Look::foreign;
    return head.u32be(kFormAt) == kForm ? Look::ours : Look::older;
}

std::unique_ptr<SQLite::Database> make(const fs::path &file) {
    auto database = connected(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, kCacheOfMakers,
                              kUsualPatience);
    database->exec(fmt::format("PRAGMA page_size=8192; PRAGMA journal_mode=OFF; "
                               "PRAGMA synchronous=OFF; PRAGMA application_id={}; "
                               "PRAGMA user_version={}",
                               kApplicationId, kForm));
    database->exec(kTables);
    for (const char *table : {"Brief", "Words"})
        gatherMuch(*database, table);
    return database;
}

void gatherMuch(SQLite::Database &index, const std::string &table) {
    index.exec(fmt::format("INSERT INTO {0} ({0}, rank) VALUES ('hashsize', {1}), "
                           "('automerge', {2}), ('crisismerge', {3})",
                           table, kHashBytes, kPieces, kMostPieces));
}

std::unique_ptr<SQLite::Database> open(const fs::path &file, bool forWriting, int patience) {
    auto database = connected(file, forWriting ? SQLite::OPEN_READWRITE : SQLite::OPEN_READONLY,
                              kCacheOfReaders, patience);
    sqlite3_db_config(database->getHandle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    const bool reads = database->tryExec("SELECT count(*) FROM sqlite_master") == SQLite::OK;
    return reads ? std::move(database) : std::unique_ptr<SQLite::Database>();
}

std::string fact(SQLite::Database &index, const std::string &name) {
    SQLite::Statement row(index, "SELECT Value FROM Facts WHERE Name = ?");
    row.bind(1, name);
    return row.executeStep() ? row.getColumn(0).getString() : std::string();
}

void setFact(SQLite::Database &index, const std::string &name, const std::string &value) {
    SQLite::Statement row(index, "INSERT OR REPLACE INTO Facts VALUES (?, ?)");
    row.bind(1, name);
    row.bind(2, value);
    row.exec();
}

} // namespace index_file

} // namespace nv
