#pragma once

#include <SQLiteCpp/Database.h>
#include <sqlite3.h>

namespace nv {

/// While it lives the database doesn't look up, for each row, the row that it refers to, and takes
/// nothing along that a removed row owned: for a task that only adds rows, and each behind the one
/// that it refers to. The look-ups are half of what it takes to store a fact.
class UncheckedReferences {
  public:
    explicit UncheckedReferences(SQLite::Database &database) : m_database(database) {
        set(-1, &m_were);
        set(0, nullptr);
    }
    ~UncheckedReferences() { set(m_were, nullptr); }
    UncheckedReferences(const UncheckedReferences &) = delete;
    UncheckedReferences &operator=(const UncheckedReferences &) = delete;

  private:
    void set(int checked, int *now) {
        sqlite3_db_config(m_database.getHandle(), SQLITE_DBCONFIG_ENABLE_FKEY, checked, now);
    }

    SQLite::Database &m_database;
    int m_were = 1;
};

} // namespace nv
