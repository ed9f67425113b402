#pragma once

#include <SQLiteCpp/Database.h>

namespace nv::test {

/// From now on the project refuses what it is to keep for itself, and goes on otherwise.
inline void refuseValues(SQLite::Database &project) {
    for (const char *write : {"INSERT", "UPDATE"})
        project.exec(std::string("CREATE TRIGGER refuse") + write + " BEFORE " + write +
                     " ON DefaultSettings BEGIN SELECT RAISE(ABORT, 'refused'); END");
}

} // namespace nv::test
