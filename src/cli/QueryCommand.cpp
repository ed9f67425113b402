#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Commands.h"
#include "cli/LoadedTable.h"
#include "cli/ReadProject.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/project/StoredQueries.h"
#include "db/sql/Dialect.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <optional>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::string sql;
    Format format = Format::table;
};

/// Of the stored queries that the statement names.
void tellMissingTerms(Session &session, SQLite::Database &database, std::string_view sql) {
    for (const StoredQuery &query : StoredQueries(database).list())
        if (lacksTerms(query.sql) && containsNoCase(sql, query.name))
            session.err << missingTerms(query.name) << '\n';
}

/// The database's own message for a statement that it refuses.
SQLite::Statement prepared(SQLite::Database &database, const std::string &sql, FailureLog &log) {
    std::optional<SQLite::Statement> statement;
    const auto failure =
        failureOf(log, "TestQuery()", [&] { statement.emplace(database, translate(sql)); });
    if (failure)
        throw UsageError(meaningOf(*failure));
    return std::move(*statement);
}

Exit run(Session &session, const Arguments &arguments) {
    if (trim(arguments.sql).empty())
        throw UsageError("a SELECT statement was expected");
    const auto database = readProject(arguments.project);
    SQLite::Statement statement = prepared(*database, arguments.sql, session.program.log);
    if (statement.getColumnCount() == 0)
        throw UsageError("the statement gives no rows: a SELECT was expected");
    tellMissingTerms(session, *database, arguments.sql);
    const StatementCells cells = cellsOf(session, statement, arguments.format);
    const auto writer = makeRowWriter(arguments.format, session.out, cells.headings());
    StatementWatch watch(*database, session.task);
    Step step = Step::Row;
    while ((step = watch.step(statement)) == Step::Row)
        writer->row(cells.cells());
    writer->finish();
    return step == Step::Cancelled ? Exit::interrupted : Exit::ok;
}

} // namespace

Command queryCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "query",
            .what = "Run a SELECT in the project's dialect, reading only",
            .readme = {"`query PROJECT SQL`", "runs one SELECT, reading only"},
            .examples = {{"query case.nvp \"SELECT TOP 5 URL FROM URLs WHERE ActionDateUTC > "
                          "#1/15/2009#\"",
                          ""},
                         {"query case.nvp \"SELECT Host, count(*) FROM URLs GROUP BY Host\" "
                          "--format csv",
                          ""}},
            .arguments = {projectWord(given->project),
                          value("SQL", given->sql, "The statement").required(),
                          formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
