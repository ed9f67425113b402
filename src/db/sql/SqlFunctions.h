#pragma once

namespace SQLite {
class Database;
}

namespace nv {

/// Gives the connection the dialect's own `like`: lists in brackets, letters beyond ASCII in either
/// case, and an error for a pattern that can't work. The pattern is compiled once a statement.
void registerFunctions(SQLite::Database &database);

} // namespace nv
