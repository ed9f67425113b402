#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <utility>

namespace nv {

/// Steps of the database's machine between two questions: a few milliseconds.
constexpr int kStepsBetween = 100'000;

StatementWatch::StatementWatch(SQLite::Database &database, TaskMonitor &task,
                               std::function<double()> done)
    : m_database(database), m_task(task), m_done(std::move(done)) {
    sqlite3_progress_handler(database.getHandle(), kStepsBetween, &StatementWatch::ask, this);
}

StatementWatch::~StatementWatch() {
    sqlite3_progress_handler(m_database.getHandle(), 0, nullptr, nullptr);
}

int StatementWatch::ask(void *watch) {
    auto *self = static_cast<StatementWatch *>(watch);
    self->m_cancelled = self->m_cancelled || !self->m_task.advance(self->m_done());
    return self->m_cancelled ? 1 : 0;
}

Step StatementWatch::step(SQLite::Statement &statement) {
    const int result = statement.tryExecuteStep();
    if (result == SQLITE_ROW)
        return Step::Row;
    if (result == SQLITE_DONE)
        return Step::Done;
    if (m_cancelled)
        return Step::Cancelled;
    throw SQLite::Exception(m_database.getHandle(), result);
}

} // namespace nv
