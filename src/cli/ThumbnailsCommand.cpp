#include "app/jobs/ThumbnailJob.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Commands.h"
#include "cli/LoadedTable.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <optional>
#include <string>
#include <utility>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::vector<std::int64_t> ids;
    bool all = false;
    bool redo = false; ///< rows that have a thumbnail too
};

std::vector<UrlId> chosenIds(Program &program, const Arguments &arguments, UnreadRows &unread) {
    if (arguments.all)
        return drawableIds(program, arguments.redo ? Redo::yes : Redo::no, unread);
    auto ids = checkedRows(program.state.projectDB.connection(), arguments.ids);
    return arguments.redo ? ids : withoutThumbnail(program, std::move(ids));
}

std::string textOf(const ThumbnailTotals &totals) {
    return fmt::format("{} made, {} could not be drawn, {} without cached content, {} "
                       "of other kinds\n",
                       counted(totals.made, "thumbnail"), totals.failed, totals.withoutContent,
                       totals.otherKinds);
}

Exit run(Session &session, const Arguments &arguments) {
    if (arguments.ids.empty() != arguments.all)
        throw UsageError("either URL_IDs or --all were expected");
    session.open(arguments.project);
    Program &program = session.program;
    ThumbnailTotals totals;
    std::optional<std::string> failure;
    const auto ids = chosenIds(program, arguments, totals.unread);
    if (!ids.empty()) {
        const ThumbnailTools tools(program, session.scratch());
        failure = failureOf(program.log, "MainBAS.MakeThumbnail()",
                            [&] { makeThumbnails(tools.context(), ids, session.task, totals); });
    }
    session.task.clear();
    session.out << textOf(totals);
    const Exit read = tellUnread(session, totals.unread);
    if (failure)
        throw StorageFailure(fmt::format("{}. What was made before is kept.", *failure));
    if (totals.failed > 0)
        session.err << fmt::format("see \"{}\"\n", nv::textOf(program.log.path()));
    closeProject(program);
    if (totals.cancelled)
        return Exit::interrupted;
    return totals.failed > 0 ? Exit::damagedEvidence : read;
}

} // namespace

Command thumbnailsCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "thumbnails",
            .what = "Draw cached pictures and pages small",
            .readme = {"`thumbnails PROJECT --all`", "draws pictures and pages small"},
            .examples = {{"thumbnails case.nvp --all", "what has none yet"},
                         {"thumbnails case.nvp 17 --redo", "one row anew"}},
            .arguments = {projectWord(given->project),
                          value("URL_ID", given->ids, "Keys of the rows"),
                          flag("--all", given->all, "Every cached picture and page"),
                          flag("--redo", given->redo, "Rows that have a thumbnail too")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
