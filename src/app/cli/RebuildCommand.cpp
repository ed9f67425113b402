#include "app/ChosenRows.h"
#include "app/Project.h"
#include "app/RebuildJob.h"
#include "app/RebuildText.h"
#include "app/cli/Commands.h"
#include "app/cli/HandOver.h"
#include "app/cli/LoadedTable.h"
#include "app/cli/OutputPath.h"
#include "app/cli/RowCheck.h"
#include "base/Files.h"
#include "base/Text.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "views/Audit.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

constexpr const char *kAllPages =
    "SELECT URL_ID FROM URLs WHERE CacheFileExists AND NOT IsHistory AND NOT IsCookie AND "
    "(IsWebPage OR Category = 'HTML' OR Category = 'Scripts, HTML') AND NOT IsPicture "
    "ORDER BY URL_ID";

std::vector<std::int64_t> chosenIds(Program &program, const RebuildArguments &arguments,
                                    UnreadRows &unread) {
    if (arguments.allPages)
        return idsPastDamage(program, kAllPages, unread);
    if (arguments.tagged)
        return taggedIds(program, unread);
    return checkedRows(program.thisClass.ProjectDB.connection(), arguments.ids);
}

void checkArguments(const RebuildArguments &arguments) {
    const int ways =
        (arguments.ids.empty() ? 0 : 1) + (arguments.tagged ? 1 : 0) + (arguments.allPages ? 1 : 0);
    if (ways != 1)
        throw UsageError("either URL_IDs, --tagged or --all-pages were expected");
}

struct Totals {
    std::size_t pages = 0;
    std::size_t rebuilt = 0;
    std::size_t replaced = 0;
    std::size_t missing = 0;
    std::size_t notRewritten = 0;
    std::size_t drawn = 0;   ///< thumbnails
    std::size_t undrawn = 0; ///< of them failed
    UnreadRows unread;       ///< pages, and rows of which nobody knows whether they are pages
};

void add(Totals &totals, const RebuiltPage &page) {
    ++totals.pages;
    if (!page.rebuilt && page.why == NotRebuilt::unreadable)
        totals.unread.insert(static_cast<std::int32_t>(page.URL_ID));
    totals.rebuilt += page.rebuilt ? 1 : 0;
    totals.replaced += page.replaced;
    totals.missing += page.missing;
    totals.notRewritten += page.notRewritten;
    totals.drawn += page.thumbnail == Redrawn::yes ? 1 : 0;
    totals.undrawn += page.thumbnail == Redrawn::failed ? 1 : 0;
}

std::string lineOf(const RebuiltPage &page) {
    if (!page.rebuilt)
        return fmt::format("{:>9}  not rebuilt: {}\n", page.URL_ID, reasonText(page.why));
    return fmt::format("{:>9}  {} found, {} replaced, {} missing{}  {}{}\n", page.URL_ID,
                       counted(page.tagsFound, "tag"), page.replaced, page.missing,
                       notRewrittenText(page.notRewritten), textOf(page.folder.filename()),
                       page.thumbnail == Redrawn::failed ? "  thumbnail not drawn" : "");
}

void tellTotals(Session &session, const Totals &totals) {
    session.out << fmt::format("{} of {} rebuilt, {} replaced, {} missing{}\n", totals.rebuilt,
                               counted(totals.pages, "page"), counted(totals.replaced, "reference"),
                               totals.missing, notRewrittenText(totals.notRewritten));
    if (totals.drawn > 0)
        session.out << fmt::format("{} drawn anew\n", counted(totals.drawn, "thumbnail"));
    if (totals.undrawn > 0)
        session.err << fmt::format("{} could not be drawn; see \"{}\"\n",
                                   counted(totals.undrawn, "thumbnail"),
                                   textOf(session.program.log.path()));
}

/// A table that lacked rows would pass for an audit.
std::vector<AuditRow> auditOf(URLClass &page, RecordTools &tools, const Program &program) {
    unpackPage(page, tools, program);
    const RebuildContext &ctx = tools.context();
    auto rows = LoadAudit(page, rebuildFolderOf(page.URLID, ctx), ctx);
    if (!rows)
        throw StorageFailure(fmt::format("row {}: the audit can't be read; see \"{}\"",
                                         number(page.URLID), textOf(program.log.path())));
    return std::move(*rows);
}

} // namespace

Exit rebuildCommand(Session &session, const RebuildArguments &arguments) {
    checkArguments(arguments);
    session.open(arguments.project);
    Program &program = session.program;
    refuseEvidence(arguments.out, program.thisClass);
    refusePlainFile(arguments.out);
    program.thisClass.DisableScriptTags = arguments.noScripts;
    program.thisClass.WideRecordIds |= arguments.wideIds;
    program.thisClass.RedrawThumbIfPageRebuilt &= !arguments.noThumbnails;
    Totals totals;
    bool whole = false;
    {
        RecordTools tools(program, session.task, session.scratch());
        const auto ids = chosenIds(program, arguments, totals.unread);
        if (!arguments.overwrite)
            refuseExisting(ids, arguments.out);
        whole = rebuildPages(program, tools, ids, [&](const RebuiltPage &page) {
            if (page.rebuilt)
                handOver(page.folder / pageNameOf(UrlId{page.URL_ID}), arguments.out);
            add(totals, page);
            session.task.clear();
            session.out << lineOf(page);
        });
    }
    session.task.clear();
    tellTotals(session, totals);
    const Exit read = tellUnread(session, totals.unread);
    closeProject(program);
    if (!whole)
        return Exit::interrupted;
    return totals.rebuilt > 0 ? read : Exit::nothingDone;
}

Exit auditCommand(Session &session, const std::string &project, std::int64_t urlId, bool wideIds,
                  Format format) {
    session.openForReading(project);
    Program &program = session.program;
    program.thisClass.WideRecordIds |= wideIds;
    {
        RecordTools tools(program, session.task, session.scratch());
        checkRow(program.thisClass.ProjectDB.connection(), urlId);
        auto page = tools.record(urlId);
        if (!page)
            throw StorageFailure(fmt::format("row {}: it can't be read; see \"{}\"", urlId,
                                             textOf(program.log.path())));
        if (!page->CacheFileRebuilt)
            throw UsageError(fmt::format("row {} was not rebuilt", urlId));
        const auto rows = auditOf(*page, tools, program);
        const auto writer =
            makeRowWriter(format, session.out,
                          {"number", "original", "new", "extension", "state", "URL_ID", "replaced",
                           "score", "URL", "other candidates"});
        for (const AuditRow &row : rows)
            writer->row({row.number, row.originalValue, row.newValue, row.extension, row.state,
                         row.TagURLID, row.isReplaced(), row.score, row.partUrl(),
                         row.otherCandidates()});
        writer->finish();
        session.task.clear();
    }
    closeProject(program);
    return Exit::ok;
}

} // namespace nv::cli
