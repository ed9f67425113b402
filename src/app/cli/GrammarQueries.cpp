#include "app/cli/Grammar.h"

namespace nv::cli {

namespace {

/// "queries save case.nvp NAME" and its like. A project that is called as a word is "./save".
CLI::App *changing(CLI::App *queries, const char *word, const char *what,
                   StoredQueryArguments &arguments) {
    CLI::App *added = queries->add_subcommand(word, what);
    added->add_option("PROJECT", arguments.project, "Project file (*.nvp)")->required();
    added->add_option("NAME", arguments.name, "Name of the query")->required();
    return added;
}

} // namespace

void Grammar::addQueries() {
    CLI::App *query =
        command("query", "Run a SELECT in the project's dialect, reading only",
                [this](Session &s) { return queryCommand(s, m_project, m_sql, m_format); });
    addProject(query, m_project);
    query->add_option("SQL", m_sql, "The statement")->required();
    addFormat(query);
}

void Grammar::addStoredQueries() {
    CLI::App *queries = app.add_subcommand(
        "queries", "The stored queries of a project: list them, or save, show and delete one");
    CLI::Option *project = queries->add_option("PROJECT", m_project, "Project file (*.nvp)");
    addFormat(queries);
    queries->callback([this, queries, project] {
        if (!queries->get_subcommands().empty())
            return;
        if (project->count() == 0)
            throw CLI::RequiredError("PROJECT");
        chosen = [this](Session &s) { return queriesCommand(s, m_project, m_format); };
    });
    CLI::App *save = changing(queries, "save", "Store a SELECT under a name", m_storedQuery);
    save->add_option("SQL", m_storedQuery.sql, "The statement")->required();
    save->add_flag("--overwrite", m_storedQuery.overwrite, "Replace a query of that name");
    save->callback(
        [this] { chosen = [this](Session &s) { return saveQueryCommand(s, m_storedQuery); }; });
    changing(queries, "show", "Write the text of a stored query", m_storedQuery)->callback([this] {
        chosen = [this](Session &s) { return showQueryCommand(s, m_storedQuery); };
    });
    changing(queries, "delete", "Delete a stored query", m_storedQuery)->callback([this] {
        chosen = [this](Session &s) { return deleteQueryCommand(s, m_storedQuery); };
    });
}

} // namespace nv::cli
