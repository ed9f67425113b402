#include "views/rows/DamagedList.h"

#include "db/sql/Damage.h"
#include "db/sql/KeyWalk.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <string>
#include <utility>

namespace nv {
namespace {

constexpr std::size_t kRowsBetween = 4096; ///< two questions whether to go on

class Survivors {
  public:
    Survivors(SQLite::Database &database, const IdQuery &query, TaskMonitor &task)
        : m_database(database), m_query(query), m_task(task) {}

    Walk find(SurvivingRows &rows) {
        Walk walk = numbers();
        const ReadingOnly guard(m_database);
        if (walk == Walk::Finished)
            walk = ask(rows);
        if (walk == Walk::Finished)
            order(rows.ids);
        return walk;
    }

  private:
    /// A whole index tells the numbers of the rows that lie on broken pages.
    Walk numbers() {
        const IdQuery indexed{"SELECT URL_ID FROM URLs INDEXED BY URLDateIndex", ""};
        Walk walk = Walk::Finished;
        if (canRun(m_database, indexed) &&
            unlessDamaged([&] { walk = collectIds(m_database, indexed, m_task, m_numbers); }))
            return walk;
        m_numbers.clear();
        return numbersInTable();
    }

    /// Every number that lies on a broken page counts as a row.
    Walk numbersInTable() {
        SQLite::Statement rows(m_database, "SELECT URL_ID FROM URLs NOT INDEXED WHERE URL_ID >= ? "
                                           "ORDER BY URL_ID");
        KeyWalk walk(m_database, rows, [this](std::int64_t number) { return take(number); });
        KeyStep step = walk.next();
        for (; step == KeyStep::Row; step = walk.next())
            if (!take(rows.getColumn(0).getInt64()))
                return Walk::Cancelled;
        return step == KeyStep::End ? Walk::Finished : Walk::Cancelled;
    }

    /// False when the task doesn't go on.
    bool take(std::int64_t number) {
        m_numbers.push_back(static_cast<std::int32_t>(number));
        return m_numbers.size() % kRowsBetween != 0 || m_task.advance(0);
    }

    /// Asks for each row whether the query gives it.
    Walk ask(SurvivingRows &found) {
        SQLite::Statement row(m_database,
                              fmt::format("SELECT 1 FROM ({}) WHERE URL_ID = :row", m_query.sql));
        bindQuery(row);
        // A query that groups or joins reads broken pages whatever the row.
        row.bind(":row", -1);
        static_cast<void>(row.executeStep());
        for (std::size_t i = 0; i < m_numbers.size(); ++i) {
            if (i % kRowsBetween == 0 && !m_task.advance(0))
                return Walk::Cancelled;
            row.tryReset();
            row.bind(":row", m_numbers[i]);
            const int answer = row.tryExecuteStep();
            checkAnswer(answer);
            if (answer == SQLITE_ROW)
                found.ids.push_back(m_numbers[i]);
            else if (answer != SQLITE_DONE)
                found.lost.insert(m_numbers[i]);
        }
        return Walk::Finished;
    }

    /// Into the query's order. Looked up by their keys, the rows are sorted without an index.
    void order(RowIds &ids) {
        std::ranges::sort(ids);
        RowIds ordered;
        const bool sorted = unlessDamaged([&] {
            SQLite::Statement rows(m_database,
                                   fmt::format("SELECT URL_ID FROM ({}) WHERE URL_ID IN ({})",
                                               m_query.sql, fmt::join(ids, ",")));
            if (rows.getBindParameterCount() > 0)
                rows.bind(1, m_query.bound);
            while (rows.executeStep())
                ordered.push_back(rows.getColumn(0).getInt());
        });
        if (sorted)
            ids = std::move(ordered);
    }

    void bindQuery(SQLite::Statement &statement) const {
        if (statement.getBindParameterCount() > 1) // the last is the one that was added here
            statement.bind(1, m_query.bound);
    }

    void checkAnswer(int answer) const {
        if (answer != SQLITE_ROW && answer != SQLITE_DONE && (answer & 0xFF) != SQLITE_CORRUPT)
            throw SQLite::Exception(m_database.getHandle(), answer);
    }

    SQLite::Database &m_database;
    const IdQuery &m_query;
    TaskMonitor &m_task;
    RowIds m_numbers; ///< of all rows, whether the query gives them or not
};

} // namespace

Walk survivingRows(SQLite::Database &database, const IdQuery &query, TaskMonitor &task,
                   SurvivingRows &rows) {
    return Survivors(database, query, task).find(rows);
}

Walk rowsPastDamage(SQLite::Database &database, const IdQuery &query, TaskMonitor &task,
                    SurvivingRows &rows) {
    Walk walk = Walk::Finished;
    if (unlessDamaged([&] { walk = collectIds(database, query, task, rows.ids); }))
        return walk;
    rows.ids.clear();
    return survivingRows(database, query, task, rows);
}

} // namespace nv
