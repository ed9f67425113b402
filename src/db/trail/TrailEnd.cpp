#include "db/trail/TrailEnd.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>
#include <fmt/format.h>

#include <sstream>

namespace nv {

namespace {

constexpr const char *kName = "CaseTrailEnd";

} // namespace

std::optional<TrailEnd> keptTrailEnd(SQLite::Database &project) {
    if (!project.tableExists("DefaultSettings"))
        return std::nullopt;
    SQLite::Statement row(project,
                          "SELECT DefaultValue FROM DefaultSettings WHERE DefaultName = ?");
    row.bind(1, kName);
    if (!row.executeStep())
        return std::nullopt;
    std::istringstream text(row.getColumn(0).getString());
    TrailEnd end;
    if (!(text >> end.entries >> end.unchained >> end.hash))
        return std::nullopt;
    return end;
}

void keepTrailEnd(SQLite::Database &project, const TrailEnd &end) {
    if (!project.tableExists("DefaultSettings"))
        return;
    const std::string text = fmt::format("{} {} {}", end.entries, end.unchained, end.hash);
    SQLite::Statement update(project,
                             "UPDATE DefaultSettings SET DefaultValue = ? WHERE DefaultName = ?");
    SQLite::bind(update, text, kName);
    if (update.exec() > 0)
        return;
    SQLite::Statement insert(project, "INSERT INTO DefaultSettings VALUES (?, ?)");
    SQLite::bind(insert, kName, text);
    insert.exec();
}

} // namespace nv
