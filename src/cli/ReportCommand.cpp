#include "app/jobs/ReportJob.h"
#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/ChosenFilters.h"
#include "cli/Commands.h"
#include "cli/HandOver.h"
#include "cli/LoadedTable.h"
#include "cli/NamedTagRows.h"
#include "cli/OutputPath.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "reports/PictureKind.h"
#include "reports/PublishReport.h"

#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

/// What isn't said is as in the settings, which the window keeps from its last report.
struct Arguments {
    std::string project;
    std::string out; ///< folder that becomes the report
    RowsAsked rows;
    std::string tag;                 ///< the name of one; empty for all rows
    std::optional<std::string> type; ///< graphical or tabular
    std::optional<std::string> title;
    std::optional<std::string> caseNumber;
    std::optional<std::string> organization;
    std::optional<std::string> reportedBy;
    std::optional<std::string> logo;
    std::string thumbnail; ///< shown where there is no picture
    bool tagged = false;
    bool all = false;
    std::optional<bool> notes;
    std::optional<bool> audit;
    std::optional<bool> links;
    std::optional<bool> timeRebuilt;
    std::optional<bool> dataSource;
    std::optional<bool> user;
    std::optional<bool> trail;
    std::optional<bool> origins;
    bool noHeader = false;
    bool noScripts = false; ///< changes nothing; scripts of earlier days say it
    bool wideIds = false;
    bool descending = false;
    bool overwrite = false;
    int urlWidth = 0;
};

constexpr double kMaking = 0.9; ///< of the whole work

void checkTarget(const Arguments &arguments, ProgramState &state) {
    const fs::path out = arguments.out;
    refuseEvidence(out, state);
    refusePlainFile(out);
    if (fs::exists(out) && !fs::is_empty(out) && !arguments.overwrite)
        throw UsageError(fmt::format("the folder \"{}\" is not empty; --overwrite replaces the "
                                     "report in it",
                                     textOf(out)));
}

void checkPicture(const char *option, const std::string &path) {
    if (path.empty())
        return;
    if (!fs::is_regular_file(path))
        throw UsageError(fmt::format("{} {}: there is no such file", option, path));
    if (!isShownByBrowsers(pictureKindOf(path)))
        throw UsageError(fmt::format("{} {}: this is no picture that a report can show; a GIF, "
                                     "JPEG, PNG, BMP, ICO or WebP was expected",
                                     option, path));
}

/// Nothing when it was cancelled.
std::optional<RowIds> rowsOf(Session &session, const Arguments &arguments) {
    Program &program = session.program;
    UrlTable table(program.state.projectDB.connection(), program.log, program.state.gmtZone);
    limitToTag(session, arguments.tag, table);
    if (loadTable(session, choiceOf(arguments.rows), table) == LoadResult::Cancelled)
        return std::nullopt;
    return table.ids();
}

template <class Value>
void take(const std::optional<Value> &said, Value &option) {
    if (said)
        option = *said;
}

void setOptions(ReportWriter &report, const Arguments &arguments) {
    if (arguments.type)
        report.reportType = *arguments.type == "graphical" ? 0 : 1;
    report.includeAll = !arguments.tagged;
    take(arguments.title, report.reportTitle);
    take(arguments.caseNumber, report.caseNumber);
    take(arguments.organization, report.organization);
    take(arguments.reportedBy, report.reportedBy);
    if (arguments.logo) {
        report.agencyLogoPath = *arguments.logo;
        report.useCustomLogo = !arguments.logo->empty();
    }
    report.defaultThumbnailPath = arguments.thumbnail;
    report.useDefaultThumbnailPath = !arguments.thumbnail.empty();
    take(arguments.notes, report.includeNotes);
    take(arguments.audit, report.includeAudit);
    take(arguments.links, report.includeLinkAnalysis);
    take(arguments.timeRebuilt, report.includeTimeRebuilt);
    take(arguments.dataSource, report.includeDataSource);
    take(arguments.user, report.includeUser);
    take(arguments.trail, report.includeCaseTrail);
    take(arguments.origins, report.includeOrigins);
    report.skipHeader = arguments.noHeader;
    report.sortAscending = !arguments.descending;
    report.urlColWidth = arguments.urlWidth;
}

/// What a report came to.
struct Made {
    fs::path index;
    std::size_t files = 0;
    std::int64_t rows = 0;
    std::size_t unread = 0; ///< rows of the project, cached files, pages that lack parts
};

/// Nothing when it was cancelled.
std::optional<Made> make(Session &session, const Arguments &arguments, const RowIds &ids) {
    SubTask making(session.task, 0, kMaking);
    ReportTools tools(session.program, making, session.scratch());
    readReportOptions(session.program.settings, tools.report);
    setOptions(tools.report, arguments);
    const bool finished = tools.run(ids);
    if (!finished && !tools.report.cancel)
        throw StorageFailure(fmt::format("the report could not be made; see \"{}\"",
                                         textOf(session.program.log.path())));
    if (!finished)
        return std::nullopt;
    for (const std::string &note : notesOf(tools.report))
        session.err << note << '\n';
    fs::create_directories(arguments.out);
    removePublished(arguments.out);
    SubTask publishing(session.task, kMaking, 1);
    const Published published = publishReport(ReportFolder(session.scratch()),
                                              tools.report.reportType, arguments.out, publishing);
    if (published.cancelled)
        return std::nullopt;
    const fs::path index = ReportFolder::at(arguments.out).index(tools.report.reportType);
    notePublish(session.program, index, published);
    return Made{index, published.files, rowsReported(session.program.state.projectDB.connection()),
                tools.report.recordsFailed + tools.report.filesFailed +
                    tools.report.pagesIncomplete};
}

Exit run(Session &session, const Arguments &arguments) {
    if (arguments.all && arguments.tagged)
        throw UsageError("either --all or --tagged was expected");
    session.program.state.filters = filtersFrom(arguments.rows.filter);
    session.openForNote(arguments.project);
    Program &program = session.program;
    checkTarget(arguments, program.state);
    checkPicture("--logo", arguments.logo.value_or(""));
    checkPicture("--thumbnail", arguments.thumbnail);
    program.state.wideRecordIds |= arguments.wideIds;
    const auto ids = rowsOf(session, arguments);
    const auto made = ids ? make(session, arguments, *ids) : std::nullopt;
    session.task.clear();
    if (made)
        session.out << fmt::format("{} reported, {} written\n{}\n",
                                   counted(static_cast<std::uint64_t>(made->rows), "row"),
                                   counted(made->files, "file"), textOf(made->index));
    closeProject(program);
    if (!made)
        return Exit::interrupted;
    return made->unread > 0 ? Exit::rowsNotRead : Exit::ok;
}

} // namespace

Command reportCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "report",
            .what = "Write a report of rows as a folder of pages and pictures",
            .readme = {"`report PROJECT --type KIND --out FOLDER`",
                       "writes a graphical or tabular report to hand over"},
            .examples =
                {{"report case.nvp --type graphical --tagged --out report", "to be handed over"},
                 {"report case.nvp --type tabular --query \"TOP 25 URLs\" --out top --trail", ""}},
            .arguments =
                {projectWord(given->project),
                 value("--type", given->type, "graphical (a card a row) or tabular (a line a row)")
                     .oneOf({"graphical", "tabular"}),
                 value("--out", given->out, "Folder that becomes the report").required(),
                 flag("--overwrite", given->overwrite, "Replace the report in a folder"),
                 flag("--all", given->all, "All rows of the query (this is the default)"),
                 flag("--tagged", given->tagged, "Only rows with the tick"),
                 tagOption(given->tag),
                 queryOption(given->rows),
                 hostOption(given->rows),
                 filterOption(given->rows),
                 flag("--descending", given->descending, "Newest rows first"),
                 value("--title", given->title, "Title of the report"),
                 value("--case-number", given->caseNumber, "Case number"),
                 value("--organization", given->organization, "Organization"),
                 value("--reported-by", given->reportedBy, "Who prepared the report"),
                 value("--logo", given->logo, "Picture in the head of the report"),
                 value("--thumbnail", given->thumbnail, "Picture where a row has none"),
                 flag("--no-header", given->noHeader, "Leave the head out"),
                 flag("--notes,!--no-notes", given->notes, "Notes of rows"),
                 flag("--audit,!--no-audit", given->audit, "Replaced references of pages"),
                 flag("--links,!--no-links", given->links, "Visited links of pages"),
                 flag("--time-rebuilt,!--no-time-rebuilt", given->timeRebuilt,
                      "When a page was rebuilt"),
                 flag("--data-source,!--no-data-source", given->dataSource,
                      "Column of a tabular report"),
                 flag("--user,!--no-user", given->user, "Column of a tabular report"),
                 flag("--trail,!--no-trail", given->trail, "What was done with the case"),
                 flag("--origins,!--no-origins", given->origins,
                      "Where the values of rows with the tick come from"),
                 value("--url-width", given->urlWidth, "Width of the URL column in pixels").from1(),
                 flag("--no-scripts", given->noScripts,
                      "Changes nothing: no script leaves with a page"),
                 flag("--wide-ids", given->wideIds, "Parts of pages may have ids above 32767")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
