#include "app/jobs/LinkJob.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::optional<std::int64_t> urlId; ///< the record whose pairs are listed
    bool wideIds = false;
    Format format = Format::table;
};

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
                    row.visitCount, row.visits ? Cell(*row.visits) : Cell(), row.url,
                    row.hashedURL});
    writer.finish();
}

Exit list(Session &session, std::int64_t urlId, Format format) {
    SQLite::Database &project = session.program.state.projectDB.connection();
    const LinkList links = linksOf(session.program, checkedRow(project, urlId));
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

Exit run(Session &session, const Arguments &arguments) {
    session.open(arguments.project, arguments.urlId ? Access::read : Access::write);
    session.program.state.wideRecordIds |= arguments.wideIds;
    const Exit exit =
        arguments.urlId ? list(session, *arguments.urlId, arguments.format) : analyse(session);
    closeProject(session.program);
    return exit;
}

} // namespace

Command linksCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "links",
            .what = "Find the cached pages that link to each record",
            .readme = {"`links PROJECT`", "finds the cached pages that link to each record; "
                                          "`--url ID` shows one record's"},
            .examples = {{"links case.nvp", "the analysis of all rows"},
                         {"links case.nvp --url 17", "what it found for one"}},
            .arguments = {projectWord(given->project),
                          value("--url", given->urlId,
                                "List what the last run found for the row of this key"),
                          flag("--wide-ids", given->wideIds, "The row may have an id above 32767")
                              .needing("--url"),
                          formatOption(given->format).needing("--url")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
