#include "app/Project.h"
#include "app/cli/QueryCommands.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/ReadOnlyConnection.h"
#include "db/StoredQueries.h"
#include "views/QueryCommands.h"
#include "views/QueryMessages.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

[[noreturn]] void refuse(const Message &message) {
    throw UsageError(replaceAll(message.text, "\n", " "));
}

std::string checkedStatement(Session &session, const std::string &sql) {
    const auto reader = openReadOnly(session.program.thisClass.ProjectDBPath);
    const QueryClass query = testTyped(sql, *reader, session.program.log);
    if (query.ErrCode != 0)
        throw UsageError(
            fmt::format("{} {}", messages::badQueryDefinition().text, query.ErrDescription));
    return query.SQL;
}

} // namespace

Exit saveQueryCommand(Session &session, const StoredQueryArguments &arguments) {
    session.open(arguments.project);
    const StoredQuery query{std::string(trim(arguments.name)),
                            checkedStatement(session, arguments.sql)};
    if (query.name.empty())
        throw UsageError("a name was expected");
    if (isReservedQuery(query.name))
        refuse(messages::reservedQuery());
    StoredQueries queries(session.program.thisClass.ProjectDB.connection());
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

Exit showQueryCommand(Session &session, const StoredQueryArguments &arguments) {
    session.openForReading(arguments.project);
    const auto text =
        StoredQueries(session.program.thisClass.ProjectDB.connection()).text(arguments.name);
    if (!text)
        throw UsageError(fmt::format("the project has no stored query \"{}\"", arguments.name));
    session.out << printable(*text) << '\n';
    return Exit::ok;
}

Exit deleteQueryCommand(Session &session, const StoredQueryArguments &arguments) {
    session.open(arguments.project);
    if (isReservedQuery(arguments.name))
        refuse(messages::reservedQueryNotDeleted());
    StoredQueries queries(session.program.thisClass.ProjectDB.connection());
    if (!queries.text(arguments.name))
        throw UsageError(fmt::format("the project has no stored query \"{}\"", arguments.name));
    queries.remove(arguments.name);
    session.out << fmt::format("\"{}\" deleted\n", printable(arguments.name));
    closeProject(session.program);
    return Exit::ok;
}

} // namespace nv::cli
