#pragma once

#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

/// Whose files were imported: what the filters can be set to. Each name once, in order.
struct OriginChoices {
    std::vector<std::string> browsers;
    std::vector<std::string> profiles;
    std::vector<std::string> persons;
};

/// None in a project of an earlier build. Throws the database's errors.
OriginChoices originChoicesOf(SQLite::Database &project);

} // namespace nv
