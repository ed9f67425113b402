#include "app/Messages.h"
#include "app/Project.h"
#include "app/cli/Commands.h"
#include "app/cli/LoadedTable.h"
#include "app/cli/RowCheck.h"
#include "app/cli/StatementCells.h"
#include "app/cli/ViewerCommands.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/Dialect.h"
#include "db/ReadOnlyConnection.h"
#include "db/RecordFacts.h"
#include "db/StoredQueries.h"
#include "reports/FactsJson.h"
#include "views/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace {

std::unique_ptr<SQLite::Database> readerOf(const std::string &project) {
    if (!isProjectName(project))
        throw StorageFailure(fmt::format("\"{}\": {}", project, messages::notAProjectFile().text));
    return openReadOnly(project);
}

StatementCells cellsOf(Session &session, SQLite::Statement &statement, Format format) {
    const ThisClass &state = session.program.thisClass;
    const bool people = format == Format::table;
    return {statement,
            people ? StatementCells::For::people : StatementCells::For::programs,
            {state.DateFormat, state.TimeFormat, state.EnableDSTChanges, 0}};
}

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

} // namespace

Exit queryCommand(Session &session, const std::string &project, const std::string &sql,
                  Format format) {
    if (trim(sql).empty())
        throw UsageError("a SELECT statement was expected");
    const auto database = readerOf(project);
    SQLite::Statement statement = prepared(*database, sql, session.program.log);
    if (statement.getColumnCount() == 0)
        throw UsageError("the statement gives no rows: a SELECT was expected");
    tellMissingTerms(session, *database, sql);
    const StatementCells cells = cellsOf(session, statement, format);
    const auto writer = makeRowWriter(format, session.out, cells.headings());
    StatementWatch watch(*database, session.task);
    Step step = Step::Row;
    while ((step = watch.step(statement)) == Step::Row)
        writer->row(cells.cells());
    writer->finish();
    return step == Step::Cancelled ? Exit::interrupted : Exit::ok;
}

Exit queriesCommand(Session &session, const std::string &project, Format format) {
    const auto database = readerOf(project);
    const auto writer = makeRowWriter(format, session.out, {"name", "sql"});
    for (const StoredQuery &query : StoredQueries(*database).list())
        if (!isSystemObject(query.name))
            writer->row({query.name, query.sql});
    writer->finish();
    return Exit::ok;
}

Exit showCommand(Session &session, const std::string &project, std::int64_t urlId, Format format) {
    const auto database = readerOf(project);
    checkRow(*database, urlId);
    if (format == Format::table) {
        showForPeople(session, *database, project, urlId);
        return Exit::ok;
    }
    SQLite::Statement row(*database, "SELECT * FROM URLs WHERE URL_ID = ?");
    row.bind(1, urlId);
    namingDamage(*database, urlId, [&row] { row.executeStep(); });
    const StatementCells cells = cellsOf(session, row, format);
    std::vector<std::string> headings = cells.headings();
    std::vector<Cell> values = cells.cells();
    if (format == Format::jsonl) {
        Cell facts = Cell::object();
        addFacts(facts, RecordFacts(*database).of(UrlId{urlId}));
        for (const auto &[heading, value] : facts.items()) {
            headings.push_back(heading);
            values.push_back(value);
        }
    }
    makeRowWriter(format, session.out, headings)->row(values);
    return Exit::ok;
}

} // namespace nv::cli
