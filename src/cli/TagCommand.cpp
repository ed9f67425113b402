#include "app/jobs/TagJob.h"
#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/ChosenFilters.h"
#include "cli/Commands.h"
#include "cli/LoadedTable.h"
#include "cli/NamedTagRows.h"
#include "cli/RowCheck.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/sql/Damage.h"
#include "db/sql/Dialect.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/tags/Tagging.h"

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
    RowsAsked rows;
    std::optional<std::string> name; ///< of a tag; nothing for the tick
    std::string note;
    std::string color;
    bool off = false;
    bool remove = false;
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

bool asksForTable(const Arguments &arguments) {
    return !arguments.rows.query.empty() || !arguments.rows.host.empty() ||
           !arguments.rows.filter.empty();
}

void check(const Arguments &arguments) {
    const int ways = (arguments.ids.empty() ? 0 : 1) + (arguments.where.empty() ? 0 : 1) +
                     (asksForTable(arguments) ? 1 : 0);
    if (ways != 1)
        throw UsageError("either URL_IDs, --where, or --query, --host and --filter were expected");
    if (!arguments.name &&
        (!arguments.note.empty() || !arguments.color.empty() || arguments.remove))
        throw UsageError("--note, --color and --remove are of a tag: --name was expected");
    if (arguments.name && arguments.off)
        throw UsageError("--off takes the tick away; a tag is taken away by --remove");
    if (!arguments.color.empty() && !isTagColor(arguments.color))
        throw UsageError(fmt::format("--color {}: one such as #d13438 was expected",
                                     printable(arguments.color)));
    const std::string fault = arguments.name ? faultOfTagName(*arguments.name) : "";
    if (!fault.empty())
        throw UsageError("--name: " + fault);
}

/// Nothing when it was interrupted.
std::optional<RowIds> idsOf(Session &session, const Arguments &arguments) {
    Program &program = session.program;
    SQLite::Database &project = program.state.projectDB.connection();
    if (!arguments.where.empty())
        return idsWhere(arguments.project, arguments.where, program.log);
    if (asksForTable(arguments)) {
        UrlTable table(project, program.log, program.state.gmtZone);
        if (loadTable(session, choiceOf(arguments.rows), table) != LoadResult::Loaded)
            return std::nullopt;
        return table.ids();
    }
    static_cast<void>(checkedRows(project, arguments.ids));
    RowIds ids;
    ids.reserve(arguments.ids.size());
    for (const std::int64_t id : arguments.ids)
        ids.push_back(static_cast<std::int32_t>(id));
    return ids;
}

/// The tag, which is made when there is none of the name and rows are to get it.
NamedTag tagFor(Program &program, const Arguments &arguments) {
    SQLite::Database &project = program.state.projectDB.connection();
    if (arguments.remove)
        return namedTag(project, *arguments.name);
    auto known = NamedTags(project).find(*arguments.name);
    if (!known)
        return makeTag(program, {.tagID = 0,
                                 .name = *arguments.name,
                                 .color = arguments.color,
                                 .position = 0,
                                 .note = {}});
    if (!arguments.color.empty() && arguments.color != known->color) {
        known->color = arguments.color;
        changeTag(program, *known);
    }
    return std::move(*known);
}

/// False when it was interrupted.
bool setNamed(Session &session, const Arguments &arguments, const RowIds &ids) {
    const TagOrder order{tagFor(session.program, arguments), !arguments.remove, arguments.note};
    const auto change = tagRows(session.program, order, ids, session.task);
    session.task.clear();
    if (!change)
        return false;
    session.out << printable(taggedText(order, *change)) << '\n';
    const std::size_t same = ids.size() - std::min(ids.size(), change->ids.size());
    if (same > 0 && change->earlierNotes.empty())
        session.err << fmt::format("{} {} it before\n", counted(same, "row"),
                                   order.isSet ? "had" : "didn't have");
    return true;
}

bool setTicks(Session &session, const Arguments &arguments, const RowIds &ids) {
    Program &program = session.program;
    const bool done = setTagged(program.state.projectDB.connection(), program.log, ids,
                                !arguments.off, session.task);
    session.task.clear();
    if (done)
        noteMarking(program,
                    {.isSet = !arguments.off,
                     .rows = static_cast<std::int64_t>(ids.size()),
                     .which = arguments.where.empty() ? idsInWords(ids) : arguments.where});
    session.out << fmt::format("{} {}\n", counted(done ? ids.size() : 0, "row"),
                               arguments.off ? "unticked" : "ticked");
    return done;
}

Exit run(Session &session, const Arguments &arguments) {
    check(arguments);
    session.program.state.filters = filtersFrom(arguments.rows.filter);
    session.open(arguments.project);
    const auto ids = idsOf(session, arguments);
    Exit end = Exit::interrupted;
    if (ids && arguments.name)
        end = setNamed(session, arguments, *ids) ? Exit::ok : Exit::interrupted;
    else if (ids)
        end = setTicks(session, arguments, *ids) ? Exit::ok : Exit::projectUnusable;
    closeProject(session.program);
    return end;
}

} // namespace

Command tagCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "tag",
        .what = "Set or take away the tick of rows, or a tag with a name",
        .readme = {"`tag PROJECT ID...`",
                   "sets or takes away ticks; with `--name` a tag of that "
                   "name, `--note`, `--color`, `--remove`; rows by `--where`, "
                   "`--query`, `--host`, `--filter`"},
        .examples = {{"tag case.nvp 17 42", ""},
                     {"tag case.nvp --where \"Visits > 5\"", "by a condition"},
                     {"tag case.nvp 17 42 --name Important --note \"see photo 3\"",
                      "a tag with a name, which is made when there is none"}},
        .arguments = {projectWord(given->project), value("URL_ID", given->ids, "Keys of the rows"),
                      value("--where", given->where, "A condition on URLs, such as \"Visits > 5\""),
                      queryOption(given->rows), hostOption(given->rows), filterOption(given->rows),
                      value("--name", given->name, "Of a tag; without it the tick is set"),
                      value("--note", given->note, "Why these rows have the tag"),
                      value("--color", given->color, "Of the tag, such as #d13438"),
                      flag("--remove", given->remove, "Take the tag away"),
                      flag("--off", given->off, "Take the tick away")},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
