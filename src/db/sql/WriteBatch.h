#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace SQLite {
class Database;
}

namespace nv {

/// Groups the writes of a long task: while it lives, writes are committed at least every 250 ms and
/// at its end, also when the task is cancelled or fails. So a crash loses at most a moment, and a
/// record doesn't wait for the disk. Without a batch every write is committed at once.
/// The connection must outlive it; batches don't nest. Throws StorageFailure.
class WriteBatch {
  public:
    /// `kept` is told each time that all that was written so far is in the file.
    explicit WriteBatch(
        SQLite::Database &database, std::function<void()> kept = [] {});
    ~WriteBatch();
    WriteBatch(const WriteBatch &) = delete;
    WriteBatch &operator=(const WriteBatch &) = delete;

    /// Call after each record.
    void written();
    void commit();
    /// Undoes what was written since it was last kept. After a write that met damage the project
    /// takes nothing else before that.
    void giveUp();
    /// Ends the batch before its time. False when what was written after the last commit is lost.
    [[nodiscard]] bool end();

  private:
    void begin();

    SQLite::Database &m_database;
    std::function<void()> m_kept;
    std::chrono::steady_clock::time_point m_begun;
    bool m_isOpen = false;
};

} // namespace nv
