#include "app/cli/LoadedTable.h"

#include "app/Project.h"
#include "base/Files.h"
#include "db/StoredQueries.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

void checkQuery(Session &session, const std::string &name) {
    SQLite::Database &project = session.program.thisClass.ProjectDB.connection();
    if (!name.empty() && !StoredQueries(project).text(name))
        throw UsageError(fmt::format("the project has no stored query \"{}\"", name));
}

} // namespace

LoadResult loadTable(Session &session, const RowChoice &choice, UrlTable &table) {
    checkQuery(session, choice.ActiveQueryName);
    table.choice = choice;
    table.Filters = session.program.thisClass.Filters;
    table.RootPath = textOf(session.program.thisClass.RootPath);
    table.dates() = dateSettings(session.program);
    const LoadResult loaded = table.LoadURLs(session.task);
    session.task.clear();
    if (loaded == LoadResult::Failed)
        throw StorageFailure(fmt::format("{}: {}", loadFailure({}).title, table.failure()));
    if (table.hiddenCount() > 0)
        session.err << fmt::format("filters hide {} of {} rows\n", table.hiddenCount(),
                                   table.hiddenCount() + table.rowCount());
    return loaded;
}

} // namespace nv::cli
