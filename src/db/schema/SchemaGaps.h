#pragma once

#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// What a project lacks of the tables and columns that an import writes records to, in words; empty
/// when it lacks nothing. A project of an earlier build can be read, but what this build knows of a
/// record would be lost in it. Throws the database's errors.
std::string missingForImport(SQLite::Database &project);

} // namespace nv
