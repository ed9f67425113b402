#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Commands.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/Damage.h"
#include "db/Dialect.h"
#include "db/ReadOnlyConnection.h"
#include "views/Tagging.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <optional>
#include <span>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::vector<std::int64_t> ids;
    std::string where; ///< a condition on URLs in the project's dialect
    bool off = false;
};

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

/// The first of them, which is all of them for most.
std::string idsText(const std::vector<std::int32_t> &ids) {
    constexpr std::size_t kTold = 20;
    const auto told = std::span(ids).first(std::min(ids.size(), kTold));
    return fmt::format("URL_ID {}{}", fmt::join(told, ", "), ids.size() > kTold ? " ..." : "");
}

Exit run(Session &session, const Arguments &arguments) {
    if (arguments.ids.empty() == arguments.where.empty())
        throw UsageError("either URL_IDs or --where were expected");
    session.open(arguments.project);
    Program &program = session.program;
    SQLite::Database &project = program.state.projectDB.connection();
    static_cast<void>(checkedRows(project, arguments.ids));
    std::vector<std::int32_t> ids;
    for (const std::int64_t id : arguments.ids)
        ids.push_back(static_cast<std::int32_t>(id));
    if (!arguments.where.empty())
        ids = idsWhere(arguments.project, arguments.where, program.log);
    const bool done = setTagged(project, program.log, ids, !arguments.off, session.task);
    session.task.clear();
    if (done)
        noteMarking(program, {.isSet = !arguments.off,
                              .rows = static_cast<std::int64_t>(ids.size()),
                              .which = arguments.where.empty() ? idsText(ids) : arguments.where});
    session.out << fmt::format("{} {}\n", counted(done ? ids.size() : 0, "row"),
                               arguments.off ? "untagged" : "tagged");
    closeProject(program);
    return done ? Exit::ok : Exit::projectUnusable;
}

} // namespace

Command tagCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "tag",
        .what = "Set or take away the tick of rows",
        .readme = {"`tag PROJECT ID...`", "sets or takes away ticks; `--where`"},
        .examples = {{"tag case.nvp 17 42", ""},
                     {"tag case.nvp --where \"Visits > 5\"", "by a condition"},
                     {"tag case.nvp 17 --off", "takes the tick away"}},
        .arguments = {projectWord(given->project), value("URL_ID", given->ids, "Keys of the rows"),
                      value("--where", given->where, "A condition on URLs, such as \"Visits > 5\""),
                      flag("--off", given->off, "Take the tick away")},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
