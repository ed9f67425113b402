#include "db/sql/KeyWalk.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace nv {

KeyWalk::KeyWalk(SQLite::Database &database, SQLite::Statement &rows,
                 std::function<bool(std::int64_t)> lost)
    : m_database(database), m_rows(rows), m_lost(std::move(lost)) {}

KeyWalk::~KeyWalk() {
    m_rows.tryReset();
}

KeyStep KeyWalk::next() {
    for (;;) {
        if (!std::exchange(m_isSet, true)) {
            m_rows.tryReset();
            m_rows.bind(1, m_from);
        }
        const int answer = m_rows.tryExecuteStep();
        if (answer == SQLITE_DONE)
            return KeyStep::End;
        if (answer == SQLITE_ROW) {
            m_from = m_rows.getColumn(0).getInt64() + 1;
            return KeyStep::Row;
        }
        if ((answer & 0xFF) != SQLITE_CORRUPT)
            throw SQLite::Exception(m_database.getHandle(), answer);
        if (m_from > greatest())
            return KeyStep::End;
        if (!m_lost(m_from++))
            return KeyStep::Stopped;
        m_isSet = false;
    }
}

std::int64_t KeyWalk::greatest() {
    if (m_greatest)
        return *m_greatest;
    SQLite::Statement given(m_database, "SELECT seq FROM sqlite_sequence WHERE name = 'URLs'");
    if (!given.executeStep())
        throw SQLite::Exception("database disk image is malformed", SQLITE_CORRUPT);
    m_greatest = std::min(given.getColumn(0).getInt64(), std::int64_t{0x7FFFFFFF});
    return *m_greatest;
}

} // namespace nv
