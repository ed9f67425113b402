#include "app/jobs/RebuildJob.h"
#include "app/jobs/RebuildText.h"
#include "app/project/ChosenRows.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/LoadedTable.h"
#include "cli/OutputPath.h"
#include "cli/PageHandOver.h"
#include "cli/PartChoice.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "views/record/Audit.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::vector<std::int64_t> ids;
    bool tagged = false;
    bool allPages = false;
    std::string out;        ///< folder that gets a folder a page
    bool overwrite = false; ///< such a folder that is there already
    bool noScripts = false;
    bool wideIds = false;
    bool noThumbnails = false;         ///< whatever the setting says
    std::optional<std::string> method; ///< otherwise by the setting
    std::vector<std::string> choices;  ///< "REF=RECORD"
    HandOverForms forms;
};

constexpr const char *kAllPages =
    "SELECT URL_ID FROM URLs WHERE CacheFileExists AND NOT IsHistory AND NOT IsCookie AND "
    "(IsWebPage OR Category = 'HTML' OR Category = 'Scripts, HTML') AND NOT IsPicture "
    "ORDER BY URL_ID";

std::vector<UrlId> chosenIds(Program &program, const Arguments &arguments, UnreadRows &unread) {
    if (arguments.allPages)
        return idsPastDamage(program, kAllPages, unread);
    if (arguments.tagged)
        return taggedIds(program, unread);
    return differentRows(program.state.projectDB.connection(), arguments.ids);
}

void checkArguments(const Arguments &arguments) {
    const int ways =
        (arguments.ids.empty() ? 0 : 1) + (arguments.tagged ? 1 : 0) + (arguments.allPages ? 1 : 0);
    if (ways != 1)
        throw UsageError("either URL_IDs, --tagged or --all-pages were expected");
    if (!arguments.choices.empty() && arguments.ids.size() != 1)
        throw UsageError("--choose: one URL_ID was expected, that of the page");
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
        noteUnread(totals.unread, page.urlID);
    totals.rebuilt += page.rebuilt ? 1 : 0;
    totals.replaced += page.replaced;
    totals.missing += page.missing;
    totals.notRewritten += page.notRewritten;
    totals.drawn += page.thumbnail == Redrawn::yes ? 1 : 0;
    totals.undrawn += page.thumbnail == Redrawn::failed ? 1 : 0;
}

std::string lineOf(const RebuiltPage &page) {
    if (!page.rebuilt)
        return fmt::format("{:>9}  not rebuilt: {}\n", page.urlID, reasonText(page.why));
    return fmt::format("{:>9}  {} found, {} replaced, {} missing{}  {}{}\n", page.urlID,
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

Exit run(Session &session, const Arguments &arguments) {
    checkArguments(arguments);
    session.open(arguments.project);
    Program &program = session.program;
    refuseEvidence(arguments.out, program.state);
    refusePlainFile(arguments.out);
    program.state.disableScriptTags = arguments.noScripts;
    program.state.wideRecordIds |= arguments.wideIds;
    program.state.redrawThumbIfPageRebuilt &= !arguments.noThumbnails;
    if (arguments.method)
        program.state.rebuildMethod = *arguments.method;
    Totals totals;
    bool whole = false;
    Exit handedOver = Exit::ok;
    {
        RecordTools tools(program, session.task, session.scratch());
        const auto ids = chosenIds(program, arguments, totals.unread);
        if (!arguments.overwrite)
            refuseExisting(ids, arguments.out, arguments.forms);
        for (const std::string &choice : arguments.choices)
            choosePart(program, ids.front(), choice);
        PageHandOver hands(program, tools, arguments.out, arguments.forms);
        whole = rebuildPages(program, tools, ids, [&](const RebuiltPage &page) {
            if (page.rebuilt)
                hands.take(page);
            add(totals, page);
            session.task.clear();
            session.out << lineOf(page);
        });
        handedOver = hands.tell(session, Exit::ok);
    }
    session.task.clear();
    tellTotals(session, totals);
    const Exit read = tellUnread(session, totals.unread);
    closeProject(program);
    if (!whole)
        return Exit::interrupted;
    if (totals.rebuilt == 0)
        return Exit::nothingDone;
    return read == Exit::ok ? handedOver : read;
}

} // namespace

Command rebuildCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "rebuild",
        .what = "Rebuild cached pages for viewing offline",
        .readme = {"`rebuild PROJECT ID... --out FOLDER`",
                   "writes cached pages with their parts, for offline view; `--method`, "
                   "`--choose`, `--single`, `--warc`, `--overwrite`"},
        .examples = {{"rebuild case.nvp 17 42 --out pages",
                      "two pages, each in a folder of its own"},
                     {"rebuild case.nvp 17 --out pages --method exact --choose 3=42",
                      "row 42 stands for reference 3"},
                     {"rebuild case.nvp --tagged --out pages --single --warc",
                      "of those with the tick one HTML file each, and a web archive"}},
        .arguments = {projectWord(given->project),
                      value("URL_ID", given->ids, "Keys of the pages' rows"),
                      flag("--tagged", given->tagged, "The rows with the tick"),
                      flag("--all-pages", given->allPages, "Every cached page"),
                      value("--out", given->out, "Folder that gets a folder a page").required(),
                      flag("--overwrite", given->overwrite, "Replace folders of such pages"),
                      flag("--single", given->forms.single,
                           "One HTML file a page, with its parts inside, in place of a folder"),
                      flag("--warc", given->forms.warc,
                           "A web archive of the records that the page was rebuilt of"),
                      flag("--no-scripts", given->noScripts, "Turn scripts into comments"),
                      value("--method", given->method,
                            "auto, classic or exact; auto: exact for today's caches")
                          .oneOf({"auto", "classic", "exact"}),
                      value("--choose", given->choices,
                            "REF=URL_ID: that row stands for reference REF of the audit, or for "
                            "that address; none leaves its place empty, auto forgets the choice"),
                      wideIdsFlag(given->wideIds),
                      flag("--no-thumbnails", given->noThumbnails,
                           "Leave the pages' thumbnails as they are")},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
