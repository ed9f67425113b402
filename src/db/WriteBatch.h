#pragma once

#include <chrono>

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
    explicit WriteBatch(SQLite::Database &database);
    ~WriteBatch();
    WriteBatch(const WriteBatch &) = delete;
    WriteBatch &operator=(const WriteBatch &) = delete;

    /// Call after each record.
    void written();
    void commit();

  private:
    void begin();

    SQLite::Database &m_database;
    std::chrono::steady_clock::time_point m_begun;
};

} // namespace nv
