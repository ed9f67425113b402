#include "search/IndexMark.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/SideFiles.h"
#include "search/IndexFile.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// An index that somebody writes needs no mark: it gets its own.
constexpr int kPatience = 100; // milliseconds

/// Dates of files go on by steps of up to 10 ms. Before the next step a write that leaves the size
/// alone would leave the stamp alone too.
constexpr std::chrono::milliseconds kStep{20};

void quietly(const std::function<void()> &body) {
    NoLog unheard;
    logFailureOf(unheard, {}, body);
}

/// Nothing while something is open in the connection: it would go on seeing the project as it was
/// when that began, or hold rows that aren't written yet.
std::optional<std::int64_t> versionSeen(SQLite::Database &project) {
    if (sqlite3_txn_state(project.getHandle(), nullptr) != SQLITE_TXN_NONE)
        return std::nullopt;
    return project.execAndGet("PRAGMA data_version").getInt64();
}

/// The index beside a project as it is, or null.
std::unique_ptr<SQLite::Database> indexOf(const fs::path &project, bool forWriting) {
    const fs::path file = indexBeside(project);
    if (index_file::look(file) != index_file::Look::ours)
        return nullptr;
    return index_file::open(file, forWriting, kPatience);
}

/// A later write would get another date than the one that the file has.
bool isSettled(const fs::path &file) {
    std::error_code none;
    const auto date = fs::last_write_time(file, none);
    if (none)
        return true; // it isn't there
    const bool hasFineDates =
        date.time_since_epoch() % std::chrono::seconds(1) != fs::file_time_type::duration::zero();
    return hasFineDates && fs::file_time_type::clock::now() - date >= kStep;
}

bool waitUntilSettled(const fs::path &project) {
    constexpr int kTries = 3;
    for (int at = 0; at < kTries; ++at) {
        if (isSettled(project) && isSettled(sideFile(project, kLogSuffix)))
            return true;
        std::this_thread::sleep_for(kStep);
    }
    return isSettled(project) && isSettled(sideFile(project, kLogSuffix));
}

} // namespace

IndexMark::IndexMark(SQLite::Database &project) : m_project(project) {
    quietly([this] {
        m_file = m_project.getFilename();
        const auto index = indexOf(m_file, false);
        if (!index)
            return;
        m_version = versionSeen(m_project); // before the stamp: no write may fall between
        const std::string stamp = stampOf(m_file);
        if (m_version && index_file::fact(*index, index_file::kStamp) == stamp)
            m_stamp = stamp;
    });
}

void IndexMark::keep() {
    if (!m_stamp.empty())
        quietly([this] { moveOn(); });
}

void IndexMark::moveOn() {
    if (stampOf(m_file) == m_stamp || !waitUntilSettled(m_file))
        return;
    const std::string stamp = stampOf(m_file);
    if (versionSeen(m_project) != m_version) // after the stamp, for the same reason
        return;
    const auto index = indexOf(m_file, true);
    if (!index)
        return;
    SQLite::Statement move(*index, "UPDATE Facts SET Value = ? WHERE Name = ? AND Value = ?");
    move.bind(1, stamp);
    move.bind(2, index_file::kStamp);
    move.bind(3, m_stamp);
    move.exec();
    m_stamp = stamp;
}

} // namespace nv
