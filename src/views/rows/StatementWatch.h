#pragma once

#include "base/TaskMonitor.h"

#include <functional>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace nv {

enum class Step { Row, Done, Cancelled };

/// While it lives, long statements of the connection ask the task now and then whether to go on.
/// The task must not use the connection from within advance(). `done` says how much of the work is,
/// 0 to 1.
class StatementWatch {
  public:
    StatementWatch(
        SQLite::Database &database, TaskMonitor &task,
        std::function<double()> done = [] { return 0.0; });
    ~StatementWatch();
    StatementWatch(const StatementWatch &) = delete;
    StatementWatch &operator=(const StatementWatch &) = delete;

    /// The next row. Throws what the database says, but not when the task was cancelled.
    Step step(SQLite::Statement &statement);
    bool cancelled() const { return m_cancelled; }

  private:
    static int ask(void *watch);

    SQLite::Database &m_database;
    TaskMonitor &m_task;
    std::function<double()> m_done;
    bool m_cancelled = false;
};

} // namespace nv
