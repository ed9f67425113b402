#include "cli/LoadedTable.h"

#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "db/project/StoredQueries.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace nv::cli {

std::string missingTerms(const std::string &name) {
    return fmt::format(
        "the query \"{}\" looks for no keywords: their list was missing or empty when "
        "the project was made, so it finds nothing, whatever the evidence holds",
        printable(name));
}

void checkQuery(Session &session, const std::string &name) {
    SQLite::Database &project = session.program.state.projectDB.connection();
    const std::string query = name.empty() ? std::string(kDefaultQueryName) : name;
    const auto text = StoredQueries(project).text(query);
    if (!name.empty() && !text)
        throw UsageError(
            fmt::format("the project has no stored query \"{}\": `queries` lists them", name));
    if (text && lacksTerms(*text))
        session.err << missingTerms(query) << '\n';
}

RowChoice choiceOf(const RowsAsked &rows) {
    return {rows.query, !rows.host.empty(), rows.host};
}

namespace {

/// What hides rows: "filters and the tag hide".
std::string hiding(const UrlTable &table) {
    std::vector<std::string_view> what;
    if (table.filters.enableFilters)
        what.emplace_back("filters");
    if (table.time)
        what.emplace_back("dates");
    if (!table.hashSets.isEmpty())
        what.emplace_back("hash sets");
    if (table.tags)
        what.emplace_back("the tag");
    const bool isOne = what.size() == 1 && table.tags;
    return fmt::format("{} {}", fmt::join(what, " and "), isOne ? "hides" : "hide");
}

} // namespace

LoadResult loadTable(Session &session, const RowChoice &choice, UrlTable &table) {
    checkQuery(session, choice.activeQueryName);
    table.choice = choice;
    table.filters = session.program.state.filters;
    table.rootPath = textOf(session.program.state.rootPath);
    table.dates() = dateSettings(session.program);
    const LoadResult loaded = table.loadURLs(session.task);
    session.task.clear();
    if (loaded == LoadResult::Failed)
        throw StorageFailure(fmt::format("{}: {}", loadFailure({}).title, table.failure()));
    if (table.foundOneByOne())
        session.err << kOneByOneNote << '\n';
    if (table.hiddenCount() > 0)
        session.err << fmt::format("{} {} of {}\n", hiding(table), table.hiddenCount(),
                                   counted(table.hiddenCount() + table.rowCount(), "row"));
    return loaded;
}

Exit tellUnread(Session &session, const UnreadRows &rows) {
    if (rows.empty())
        return Exit::ok;
    session.err << noteOf(rows) << '\n';
    return Exit::rowsNotRead;
}

} // namespace nv::cli
