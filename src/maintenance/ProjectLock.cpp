#include "maintenance/ProjectLock.h"

#include "db/sql/SqliteErrors.h"

#include <fmt/format.h>
#include <sqlite3.h>

namespace nv {

namespace {

constexpr int kBusyTimeout = 1000; // milliseconds

[[noreturn]] void refuse(const std::filesystem::path &project, std::string_view reason) {
    throw StorageFailure(fmt::format("\"{}\" can't be replaced: {}", textOf(project), reason));
}

} // namespace

ProjectLock::ProjectLock(const std::filesystem::path &project) {
    onFile(project, [&] {
        m_lock = std::make_unique<SQLite::Database>(std::filesystem::absolute(project).string(),
                                                    SQLite::OPEN_READWRITE, kBusyTimeout);
        if (sqlite3_db_readonly(m_lock->getHandle(), "main") != 0)
            refuse(project, "the file can't be written");
        // Only the last one who has the project open can bring it into one file.
        if (m_lock->tryExec("PRAGMA journal_mode=DELETE") == SQLITE_BUSY ||
            m_lock->execAndGet("PRAGMA journal_mode").getString() != "delete" ||
            m_lock->tryExec("BEGIN IMMEDIATE") == SQLITE_BUSY)
            refuse(project, "another program has it open");
    });
    m_bytes = std::make_unique<FileReader>(project);
}

ProjectLock::~ProjectLock() = default;

} // namespace nv
