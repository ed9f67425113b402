#include "views/limits/OriginChoices.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <string_view>

namespace nv {

namespace {

std::vector<std::string> namesIn(SQLite::Database &project, std::string_view column) {
    SQLite::Statement known(project, "SELECT 1 FROM pragma_table_info('SourceFiles') "
                                     "WHERE name = ? COLLATE NOCASE");
    known.bind(1, std::string(column));
    std::vector<std::string> names;
    if (!known.executeStep())
        return names;
    SQLite::Statement rows(
        project,
        fmt::format("SELECT DISTINCT {0} FROM SourceFiles WHERE {0} <> '' ORDER BY {0}", column));
    while (rows.executeStep())
        names.push_back(rows.getColumn(0).getString());
    return names;
}

} // namespace

OriginChoices originChoicesOf(SQLite::Database &project) {
    return {namesIn(project, "Browser"), namesIn(project, "Profile"), namesIn(project, "Person")};
}

} // namespace nv
