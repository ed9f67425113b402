#include "app/cli/LinkCommands.h"

#include "app/LinkJob.h"
#include "app/Project.h"
#include "app/cli/RowCheck.h"
#include "base/Files.h"
#include "base/Text.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

Exit analyse(Session &session) {
    const LinkTotals totals = analyseLinks(session.program, session.task, session.scratch());
    session.task.clear();
    session.out << fmt::format(
        "{} examined, {}, {} refreshed, {} not fetched, {} not read\n",
        counted(static_cast<std::uint64_t>(totals.examined), "record"),
        counted(static_cast<std::uint64_t>(totals.matches), "match", "matches"),
        counted(static_cast<std::uint64_t>(totals.refreshed), "page"), totals.notFetched,
        totals.notRead);
    if (const std::string notes = notesOn(totals); !notes.empty())
        session.err << notes << '\n';
    if (totals.notRead > 0)
        session.err << fmt::format("see \"{}\"\n", textOf(session.program.log.path()));
    if (totals.cancelled)
        return Exit::interrupted;
    return totals.notRead > 0 ? Exit::damagedEvidence : Exit::ok;
}

void write(const LinkList &links, RowWriter &writer) {
    for (const LinkRow &row : links.rows)
        writer.row({number(row.other), row.kind, row.end == LinkEnd::parent ? "Parent" : "Child",
                    row.VisitCount, row.Visits ? Cell(*row.Visits) : Cell(), row.URL,
                    row.HashedURL});
    writer.finish();
}

Exit list(Session &session, std::int64_t urlId, Format format) {
    SQLite::Database &project = session.program.thisClass.ProjectDB.connection();
    checkRow(project, urlId);
    const LinkList links = linksOf(session.program, UrlId{urlId});
    if (!links.failure.empty())
        throw UsageError(fmt::format("{} (here: --wide-ids)", links.failure));
    const auto writer =
        makeRowWriter(format, session.out,
                      {"URL_ID", "Kind", "Direction", "VisitCount", "Visits", "URL", "HashedURL"});
    write(links, *writer);
    if (links.rows.empty() && !hasLinkAnalysis(project))
        session.err << "the project holds no pairs: run the command without --url first\n";
    return Exit::ok;
}

} // namespace

Exit linksCommand(Session &session, const LinkArguments &arguments, Format format) {
    session.open(arguments.project, arguments.urlId ? Access::read : Access::write);
    session.program.thisClass.WideRecordIds |= arguments.wideIds;
    const Exit exit = arguments.urlId ? list(session, *arguments.urlId, format) : analyse(session);
    closeProject(session.program);
    return exit;
}

} // namespace nv::cli
