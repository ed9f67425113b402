#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Commands.h"
#include "cli/ReadProject.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/project/StoredQueries.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/queries/QueryCommands.h"
#include "views/queries/QueryMessages.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::string name;
    std::string sql;
    bool overwrite = false;
    Format format = Format::table;
};

[[noreturn]] void refuse(const Message &message) {
    throw UsageError(replaceAll(message.text, "\n", " "));
}

std::string checkedStatement(Session &session, const std::string &sql) {
    const auto reader = openReadOnly(session.program.state.projectDBPath);
    const QueryCheck query = testTyped(sql, *reader, session.program.log);
    if (query.errCode != 0)
        throw UsageError(
            fmt::format("{} {}", messages::badQueryDefinition().text, query.errDescription));
    return query.sql;
}

/// Reserved names and statements that can't run are refused.
Exit save(Session &session, const Arguments &arguments) {
    session.open(arguments.project);
    const StoredQuery query{std::string(trim(arguments.name)),
                            checkedStatement(session, arguments.sql)};
    if (query.name.empty())
        throw UsageError("a name was expected");
    if (isReservedQuery(query.name))
        refuse(messages::reservedQuery());
    StoredQueries queries(session.program.state.projectDB.connection());
    if (queries.text(query.name) && !arguments.overwrite)
        throw UsageError(fmt::format(
            "the project has a query \"{}\" already; --overwrite replaces it", query.name));
    // Names of tables, for example, are refused by the database.
    if (const auto failure = failureOf(session.program.log, "MainForm.btnSaveQuery_Click()",
                                       [&] { queries.save(query); }))
        throw UsageError(fmt::format("the query can't be stored: {}", *failure));
    session.out << fmt::format("\"{}\" saved\n", printable(query.name));
    closeProject(session.program);
    return Exit::ok;
}

/// Writes the query's text and nothing else.
Exit show(Session &session, const Arguments &arguments) {
    session.openForReading(arguments.project);
    const auto text =
        StoredQueries(session.program.state.projectDB.connection()).text(arguments.name);
    if (!text)
        throw UsageError(fmt::format("the project has no stored query \"{}\"", arguments.name));
    session.out << printable(*text) << '\n';
    return Exit::ok;
}

Exit remove(Session &session, const Arguments &arguments) {
    session.open(arguments.project);
    if (isReservedQuery(arguments.name))
        refuse(messages::reservedQueryNotDeleted());
    StoredQueries queries(session.program.state.projectDB.connection());
    if (!queries.text(arguments.name))
        throw UsageError(fmt::format("the project has no stored query \"{}\"", arguments.name));
    queries.remove(arguments.name);
    session.out << fmt::format("\"{}\" deleted\n", printable(arguments.name));
    closeProject(session.program);
    return Exit::ok;
}

Exit list(Session &session, const Arguments &arguments) {
    const auto database = readProject(arguments.project);
    const auto writer = makeRowWriter(arguments.format, session.out, {"name", "sql"});
    for (const StoredQuery &query : StoredQueries(*database).list())
        if (!isSystemObject(query.name))
            writer->row({query.name, query.sql});
    writer->finish();
    return Exit::ok;
}

Argument nameWord(Arguments &given) {
    return value("NAME", given.name, "Name of the query").required();
}

} // namespace

Command queriesCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "queries",
            .what = "The stored queries of a project: list them, or save, show and delete one",
            .readme = {"`queries PROJECT`",
                       "lists the stored queries; `queries save`, `show`, `delete`"},
            .examples = {{"queries case.nvp", "what the project holds"},
                         {"list case.nvp --query \"TOP 25 URLs\"", "the rows of one"}},
            .arguments = {projectWord(given->project), formatOption(given->format)},
            .run = [given](Session &session) { return list(session, *given); }};
}

Command saveQueryCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "queries save",
        .what = "Store a SELECT under a name",
        .examples = {{"queries save case.nvp Often \"SELECT * FROM URLs WHERE Visits > 9\"", ""},
                     {"queries save case.nvp Often \"SELECT * FROM URLs\" --overwrite", ""}},
        .arguments = {projectWord(given->project), nameWord(*given),
                      value("SQL", given->sql, "The statement").required(),
                      flag("--overwrite", given->overwrite, "Replace a query of that name")},
        .run = [given](Session &session) { return save(session, *given); }};
}

Command showQueryCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "queries show",
            .what = "Write the text of a stored query",
            .examples = {{"queries show case.nvp \"TOP 25 URLs\"", ""},
                         {"queries show case.nvp Often > often.sql", "kept as a file"}},
            .arguments = {projectWord(given->project), nameWord(*given)},
            .run = [given](Session &session) { return show(session, *given); }};
}

Command deleteQueryCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "queries delete",
            .what = "Delete a stored query",
            .examples = {{"queries delete case.nvp Often", ""},
                         {"queries delete case.nvp \"TOP 25 URLs\"", ""}},
            .arguments = {projectWord(given->project), nameWord(*given)},
            .run = [given](Session &session) { return remove(session, *given); }};
}

} // namespace nv::cli
