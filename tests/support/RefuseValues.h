#pragma once

#include <SQLiteCpp/Database.h>

namespace nv::test {

/// From now on the project refuses what it is to keep for itself, and goes on otherwise.
inline void refuseValues(SQLite::Database &project) {
    project.exec("CREATE TABLE Kept AS SELECT DefaultName, DefaultValue FROM DefaultSettings;"
                 "DROP TABLE DefaultSettings;"
                 "CREATE TABLE DefaultSettings (DefaultName TEXT, DefaultValue TEXT, "
                 "CHECK (DefaultValue IS NULL));"
                 "PRAGMA ignore_check_constraints = ON;"
                 "INSERT INTO DefaultSettings SELECT * FROM Kept;"
                 "PRAGMA ignore_check_constraints = OFF;");
}

} // namespace nv::test
