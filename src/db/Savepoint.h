#pragma once

#include <SQLiteCpp/Database.h>

namespace nv {

/// Writes that happen together or not at all, inside of a transaction or without one. Unless
/// release() was reached they are undone, and nothing stays open: the library's own class undoes
/// them too, but leaves a transaction behind, and all that is written later would be lost.
class Savepoint {
  public:
    explicit Savepoint(SQLite::Database &database) : m_database(database) {
        m_database.exec("SAVEPOINT together");
    }
    ~Savepoint() {
        if (!m_released)
            m_database.tryExec("ROLLBACK TO together; RELEASE together");
    }
    Savepoint(const Savepoint &) = delete;
    Savepoint &operator=(const Savepoint &) = delete;

    void release() {
        m_database.exec("RELEASE together");
        m_released = true;
    }

  private:
    SQLite::Database &m_database;
    bool m_released = false;
};

} // namespace nv
