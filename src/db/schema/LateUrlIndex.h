#pragma once

#include "base/FailureLog.h"

namespace SQLite {
class Database;
}

namespace nv {

/// While the first records of a project are added it does without the index over their addresses,
/// which is made in one go when this ends, however that comes about: each row goes to another place
/// of it, and an import of a million would take half as long again. A program that is killed
/// meanwhile leaves a project without the index, which the next import makes, or the Upgrade
/// Wizard. The connection and the log must outlive it; no transaction may be open at either end.
class LateUrlIndex {
  public:
    /// An index of a project that has records stays. Throws the database's errors.
    LateUrlIndex(SQLite::Database &project, FailureLog &log);
    ~LateUrlIndex();
    LateUrlIndex(const LateUrlIndex &) = delete;
    LateUrlIndex &operator=(const LateUrlIndex &) = delete;

  private:
    SQLite::Database &m_project;
    FailureLog &m_log;
    bool m_isMissing = false;
};

} // namespace nv
