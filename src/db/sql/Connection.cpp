#include "db/sql/Connection.h"

#include "base/ByteView.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "db/sql/SideFiles.h"
#include "db/sql/SqlFunctions.h"
#include "db/sql/SqliteErrors.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <chrono>
#include <thread>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// "NVP1" in the file header tells our files from other SQLite databases.
constexpr std::uint32_t kApplicationId = 0x4E565031;
constexpr int kLayoutVersion = 1;
constexpr int kBusyTimeout = 5000; // milliseconds

/// A connection belongs to one thread, so the database needn't lock it.
int flagsOf(Access access) {
    switch (access) {
    case Access::create:
        return SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_NOMUTEX;
    case Access::write:
    case Access::note:
        return SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX;
    case Access::read:
        break;
    }
    return SQLite::OPEN_READONLY | SQLite::OPEN_NOMUTEX;
}

[[noreturn]] void refuse(const fs::path &file, std::string_view reason) {
    throw StorageFailure(fmt::format("\"{}\": {}", textOf(file), reason));
}

/// SQLite would say no more than "unable to open" to these.
void checkPath(const fs::path &file, Access access) {
    std::error_code none;
    const fs::file_status status = fs::status(file, none);
    if (fs::is_directory(status))
        refuse(file, "this is a folder");
    if (access != Access::create && !fs::exists(status))
        refuse(file, "there is no such file");
    if (access != Access::create && ::access(file.c_str(), R_OK) != 0)
        refuse(file, "it may not be read: permission denied");
    if (access != Access::create && fs::file_size(file, none) == 0 && !none)
        refuse(file, "this is no project: the file is empty");
    if (access == Access::create && fs::exists(status) && fs::file_size(file, none) > 0)
        refuse(file, "there is a file of this name already");
}

/// The id in the file's header, which lies there in every state of a database.
std::uint32_t applicationIdIn(ByteView head) {
    constexpr std::uint64_t kPlace = 68;
    return head.u32be(kPlace);
}

void protect(SQLite::Database &database, Access access) {
    sqlite3 *handle = database.getHandle();
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    if (access != Access::create)
        sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    database.exec("PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON");
    registerFunctions(database);
}

void requireWriting(SQLite::Database &database, const fs::path &file) {
    if (sqlite3_db_readonly(database.getHandle(), "main") != 0)
        refuse(file, "the file can't be written");
}

/// For this the database has to be alone with the file for a moment, and it doesn't wait for that
/// by itself.
int enterLogMode(SQLite::Database &database) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds kPause{20};
    const auto end = Clock::now() + std::chrono::milliseconds(kBusyTimeout);
    int result = database.tryExec("PRAGMA journal_mode=WAL");
    while (result == SQLITE_BUSY && Clock::now() < end) {
        std::this_thread::sleep_for(kPause);
        result = database.tryExec("PRAGMA journal_mode=WAL");
    }
    return result;
}

/// 64 MB of cache, and as much of the log before it is brought into the file: an import writes the
/// same pages of the indexes again and again. WAL lets readers in while an import writes, and with
/// NORMAL a crash of the program loses nothing that was committed.
void prepareWriting(SQLite::Database &database, const fs::path &file) {
    requireWriting(database, file);
    const int entered = enterLogMode(database);
    if (entered == SQLITE_BUSY)
        throw SQLite::Exception(database.getHandle(), entered);
    if (entered != SQLITE_OK)
        refuse(file, fmt::format("on the disk \"{}\": it or its folder can't be written: {}",
                                 textOf(diskOf(file)), database.getErrorMsg()));
    database.exec("PRAGMA synchronous=NORMAL; PRAGMA cache_size=-65536; PRAGMA foreign_keys=ON; "
                  "PRAGMA wal_autocheckpoint=8192"); // pages of 8 KB
}

std::unique_ptr<SQLite::Database> opened(const fs::path &file, Access access) {
    // An absolute path: a name like "file:x" or ":memory:" has a meaning of its own to SQLite.
    auto database = std::make_unique<SQLite::Database>(fs::absolute(file).string(), flagsOf(access),
                                                       kBusyTimeout);
    protect(*database, access);
    return database;
}

/// Whoever was killed while it wrote in the plain mode has left a journal, without which the file
/// makes no sense; and who only reads may not bring it back.
bool needsRollback(SQLite::Database &reading) {
    return reading.tryExec("PRAGMA schema_version") != SQLITE_OK &&
           reading.getExtendedErrorCode() == SQLITE_READONLY_ROLLBACK;
}

/// As any connection that writes does when it begins.
void rollBack(const fs::path &file) {
    const auto database = opened(file, Access::note);
    const int result = database->tryExec("PRAGMA schema_version");
    if (result == SQLITE_BUSY)
        throw SQLite::Exception(database->getHandle(), result);
    if (result != SQLITE_OK)
        refuse(file, fmt::format("a program was stopped while it wrote, and \"{}\" must be rolled "
                                 "back first, which can't be written here ({}): make the project "
                                 "and its folder writable, or copy both files to where they are",
                                 textOf(sideFile(file.filename(), kJournalSuffix)),
                                 database->getErrorMsg()));
}

} // namespace

void checkIsProject(const fs::path &file) {
    constexpr std::size_t kHead = 100; // bytes
    constexpr std::string_view kMagic("SQLite format 3\0", 16);
    if (!fs::is_regular_file(file)) // reading a pipe would wait for whoever writes to it
        refuse(file, "this is no plain file");
    const Bytes bytes = readHead(file, kHead);
    const ByteView head(bytes);
    if (head.size() < kHead || !head.raw().starts_with(kMagic))
        refuse(file, "this is no project (file is not a database)");
    if (const std::uint32_t id = applicationIdIn(head); id != kApplicationId)
        refuse(file, fmt::format("this is no project: its application_id is 0x{:08X}, and "
                                 "0x{:08X} was expected; nothing in it was changed",
                                 id, kApplicationId));
}

std::unique_ptr<SQLite::Database> connect(const fs::path &file, Access access) {
    checkPath(file, access);
    return onFile(file, [&] {
        auto database = opened(file, access);
        if (access == Access::create)
            database->exec(fmt::format(
                "PRAGMA page_size=8192; PRAGMA application_id={}; PRAGMA user_version={}",
                kApplicationId, kLayoutVersion));
        if (access == Access::create || access == Access::write)
            prepareWriting(*database, file);
        return database;
    });
}

std::unique_ptr<SQLite::Database> connectToProject(const fs::path &file, Access access) {
    checkPath(file, access);
    checkIsProject(file);
    return onFile(file, [&] {
        auto database = opened(file, access);
        if (access == Access::read && needsRollback(*database))
            rollBack(file);
        if (!database->tableExists("URLs"))
            refuse(file, "this is no project: it has no table URLs");
        if (access == Access::write)
            prepareWriting(*database, file);
        else if (access == Access::note)
            requireWriting(*database, file);
        return database;
    });
}

} // namespace nv
