#include "app/Project.h"
#include "app/cli/Commands.h"
#include "app/cli/RowCheck.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/Damage.h"
#include "db/Dialect.h"
#include "db/ReadOnlyConnection.h"
#include "views/Tagging.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace nv::cli {

namespace {

/// The rows of a condition, found on a connection that can only read.
std::vector<std::int32_t> idsWhere(const std::string &project, const std::string &where,
                                   FailureLog &log) {
    const auto database = openReadOnly(project);
    std::vector<std::int32_t> ids;
    const auto collect = [&] {
        SQLite::Statement rows(*database,
                               translate("SELECT URL_ID FROM URLs WHERE (" + where + ")"));
        while (rows.executeStep())
            ids.push_back(rows.getColumn(0).getInt());
    };
    bool whole = true;
    const auto failure = failureOf(log, "TestQuery()", [&] { whole = unlessDamaged(collect); });
    if (!whole)
        throw StorageFailure(
            fmt::format("\"{}\" is malformed, so that not every row could be asked: "
                        "nothing was changed",
                        project));
    if (failure)
        throw UsageError(meaningOf(*failure));
    return ids;
}

} // namespace

Exit tagCommand(Session &session, const TagArguments &arguments) {
    if (arguments.ids.empty() == arguments.where.empty())
        throw UsageError("either URL_IDs or --where were expected");
    session.open(arguments.project);
    Program &program = session.program;
    SQLite::Database &project = program.thisClass.ProjectDB.connection();
    checkRows(project, arguments.ids);
    std::vector<std::int32_t> ids;
    for (const std::int64_t id : arguments.ids)
        ids.push_back(static_cast<std::int32_t>(id));
    if (!arguments.where.empty())
        ids = idsWhere(arguments.project, arguments.where, program.log);
    const bool done = setTagged(project, program.log, ids, !arguments.off, session.task);
    session.task.clear();
    session.out << fmt::format("{} {}\n", counted(done ? ids.size() : 0, "row"),
                               arguments.off ? "untagged" : "tagged");
    closeProject(program);
    return done ? Exit::ok : Exit::projectUnusable;
}

} // namespace nv::cli
