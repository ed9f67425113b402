#pragma once

#include <SQLiteCpp/Database.h>
#include <sqlite3.h>

namespace nv {

/// Writes that happen together or not at all, inside of a transaction or without one. Unless
/// release() was reached they are undone, and nothing stays open: the library's own class undoes
/// them too, but leaves a transaction behind, and all that is written later would be lost. Nor does
/// one that met damage end by a savepoint: where it is the whole transaction, that is rolled back.
/// A whole one takes the right to write at once, which waits for another program's short writes:
/// once something was read, the database refuses it without waiting.
class Savepoint {
  public:
    enum class For {
        writing,
        reading, ///< all as of one moment; nobody is kept from writing
    };
    explicit Savepoint(SQLite::Database &database, For what = For::writing)
        : m_database(database), m_isWhole(sqlite3_get_autocommit(database.getHandle()) != 0) {
        m_database.exec(!m_isWhole             ? "SAVEPOINT together"
                        : what == For::writing ? "BEGIN IMMEDIATE"
                                               : "BEGIN");
    }
    ~Savepoint() {
        if (!m_released)
            m_database.tryExec(m_isWhole ? "ROLLBACK" : "ROLLBACK TO together; RELEASE together");
    }
    Savepoint(const Savepoint &) = delete;
    Savepoint &operator=(const Savepoint &) = delete;

    void release() {
        m_database.exec(m_isWhole ? "COMMIT" : "RELEASE together");
        m_released = true;
    }

  private:
    SQLite::Database &m_database;
    bool m_isWhole; ///< no transaction was open
    bool m_released = false;
};

} // namespace nv
