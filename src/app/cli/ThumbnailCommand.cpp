#include "app/Project.h"
#include "app/ThumbnailJob.h"
#include "app/cli/Commands.h"
#include "app/cli/LoadedTable.h"
#include "app/cli/RowCheck.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <optional>
#include <string>

namespace nv::cli {

namespace {

std::vector<std::int64_t> chosenIds(Program &program, const ThumbnailArguments &arguments,
                                    UnreadRows &unread) {
    if (arguments.all)
        return drawableIds(program, arguments.redo ? Redo::yes : Redo::no, unread);
    checkRows(program.thisClass.ProjectDB.connection(), arguments.ids);
    return arguments.redo ? arguments.ids : withoutThumbnail(program, arguments.ids);
}

std::string textOf(const ThumbnailTotals &totals) {
    return fmt::format("{} made, {} could not be drawn, {} without cached content, {} "
                       "of other kinds\n",
                       counted(totals.made, "thumbnail"), totals.failed, totals.withoutContent,
                       totals.otherKinds);
}

} // namespace

Exit thumbnailsCommand(Session &session, const ThumbnailArguments &arguments) {
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

} // namespace nv::cli
