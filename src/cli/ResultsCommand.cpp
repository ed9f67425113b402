#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "cli/Commands.h"
#include "cli/ReadProject.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/marks/SearchResults.h"
#include "time/DateFormat.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::string name;
    Format format = Format::table;
};

SearchResult resultOf(SQLite::Database &project, const std::string &name) {
    auto result = SearchResults(project).find(name);
    if (!result)
        throw UsageError(
            fmt::format("the project has no result \"{}\": `results` lists them", name));
    return std::move(*result);
}

Exit list(Session &session, const Arguments &arguments) {
    const auto project = readProject(arguments.project);
    const auto writer = makeRowWriter(
        arguments.format, session.out,
        {"Name", "Kind", "Rows", "MadeUTC", "Search", "File", "SHA256Hash", "AppVersion"});
    for (const SearchResult &result : SearchResults(*project).list())
        writer->row({result.name, result.kind, result.rowCount, isoUtc(result.madeUTC),
                     result.searchText, result.filePath, result.sha256Hash, result.appVersion});
    writer->finish();
    return Exit::ok;
}

Exit show(Session &session, const Arguments &arguments) {
    const auto project = readProject(arguments.project);
    const SearchResult result = resultOf(*project, arguments.name);
    const auto writer =
        makeRowWriter(arguments.format, session.out, {"URL_ID", "Term", "Field", "Hits"});
    for (const ResultHit &hit : SearchResults(*project).hits(result))
        writer->row({hit.urlID, hit.term, hit.field, hit.hits > 0 ? Cell(hit.hits) : Cell()});
    writer->finish();
    return Exit::ok;
}

Exit remove(Session &session, const Arguments &arguments) {
    session.open(arguments.project);
    SQLite::Database &project = session.program.state.projectDB.connection();
    const SearchResult result = resultOf(project, arguments.name);
    SearchResults(project).remove(result);
    TrailEntry entry;
    entry.action = "Search";
    entry.detail = fmt::format("the result \"{}\" was deleted", result.name);
    entry.rowCount = result.rowCount;
    noteInTrail(session.program, std::move(entry));
    session.out << fmt::format("\"{}\" deleted\n", printable(result.name));
    closeProject(session.program);
    return Exit::ok;
}

Argument nameWord(Arguments &given) {
    return value("NAME", given.name, "Name of the result").required();
}

} // namespace

Command resultsCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "results",
            .what =
                "The results of searches that a project keeps: list them, or show and delete one",
            .readme = {"`results PROJECT`", "lists the results that searches and lists of keywords "
                                            "have kept; `results show`, `delete`"},
            .examples = {{"results case.nvp", "what is kept"},
                         {"list case.nvp --query \"First list\"",
                          "the rows of one: it is a stored query too"}},
            .arguments = {projectWord(given->project), formatOption(given->format)},
            .run = [given](Session &session) { return list(session, *given); }};
}

Command showResultCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "results show",
        .what = "The hits of a kept result: row, term, field and how often",
        .examples = {{"results show case.nvp \"First list\"", ""},
                     {"results show case.nvp Invoices --format csv > invoices.csv", ""}},
        .arguments = {projectWord(given->project), nameWord(*given), formatOption(given->format)},
        .run = [given](Session &session) { return show(session, *given); }};
}

Command deleteResultCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "results delete",
            .what = "Delete a kept result with its stored query",
            .examples = {{"results delete case.nvp Invoices", ""},
                         {"results delete case.nvp \"First list\"", ""}},
            .arguments = {projectWord(given->project), nameWord(*given)},
            .run = [given](Session &session) { return remove(session, *given); }};
}

} // namespace nv::cli
