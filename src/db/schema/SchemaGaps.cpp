#include "db/schema/SchemaGaps.h"

#include "base/Text.h"
#include "db/schema/Schema.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <set>

namespace nv {

namespace {

/// Lower-case; none when there is no such table.
std::set<std::string> columnsOf(SQLite::Database &project, std::string_view table) {
    std::set<std::string> names;
    SQLite::Statement rows(project, "SELECT name FROM pragma_table_info(?)");
    rows.bind(1, std::string(table));
    while (rows.executeStep())
        names.insert(toLower(rows.getColumn(0).getString()));
    return names;
}

} // namespace

std::string missingForImport(SQLite::Database &project) {
    for (const std::string_view name : {"URLs", "SourceFiles", "RecordFacts"}) {
        const std::set<std::string> there = columnsOf(project, name);
        if (there.empty())
            return fmt::format("table \"{}\"", name);
        for (const schema::Column &column : schema::findTable(name)->columns)
            if (!there.contains(toLower(column.name)))
                return fmt::format("column \"{}\" of table \"{}\"", column.name, name);
    }
    return {};
}

} // namespace nv
