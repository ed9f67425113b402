#include "app/jobs/ReportJob.h"
#include "app/jobs/ReportTags.h"
#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/ChosenFilters.h"
#include "cli/Commands.h"
#include "cli/HandOver.h"
#include "cli/OutputPath.h"
#include "cli/ReportedRows.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "reports/case/RedactionNotes.h"
#include "reports/pages/PictureKind.h"
#include "reports/report/PublishReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

/// What isn't said is as in the settings, which the window keeps from its last report.
struct Arguments {
    std::string project;
    std::string out; ///< folder that becomes the report
    ReportedRows rows;
    std::optional<std::string> type;
    std::optional<std::string> title;
    std::optional<std::string> caseNumber;
    std::optional<std::string> organization;
    std::optional<std::string> reportedBy;
    std::optional<std::string> logo;
    std::string thumbnail; ///< shown where there is no picture
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
    // Of a report of a case.
    std::optional<CaseCards> cards;
    std::optional<bool> tagNotes;
    std::optional<bool> timeline;
    std::optional<bool> evidence;
    std::vector<std::string> leaveOut;
    std::vector<std::string> blur;
    bool noRedactions = false; ///< those that the project keeps don't hold
    bool remember = false;
};

const std::vector<std::string> kTypes = {"graphical", "tabular", "case"};

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

constexpr std::string_view kProcedure = "ReportForm.OkBtn_Click()";

RedactionRules redactionsAsked(Session &session, const Arguments &arguments) {
    RedactionRules rules;
    const auto fault = failureOf(session.program.log, kProcedure, [&] {
        for (const std::string &each : arguments.leaveOut)
            rules.push_back(redactionRule(RedactionWay::leaveOut, each));
        for (const std::string &each : arguments.blur)
            rules.push_back(redactionRule(RedactionWay::blur, each));
    });
    if (fault)
        throw UsageError(*fault);
    return rules;
}

template <class Value>
void take(const std::optional<Value> &said, Value &option) {
    if (said)
        option = *said;
}

void setOptions(ReportWriter &report, const Arguments &arguments) {
    if (arguments.type)
        report.reportType =
            static_cast<int>(std::ranges::find(kTypes, *arguments.type) - kTypes.begin());
    report.includeAll = !arguments.rows.tagged;
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

/// What nobody redacts is handed over: so a classic report, which shows all, says no to these.
void setCaseOptions(Session &session, ReportWriter &report, const Arguments &arguments) {
    CaseOptions &options = report.caseOptions;
    // Who chooses rows by a tag means cards of those.
    if (!arguments.rows.tags.empty() && options.cards == CaseCards::ticked)
        options.cards = CaseCards::tagged;
    take(arguments.cards, options.cards);
    take(arguments.tagNotes, options.tagNotes);
    take(arguments.timeline, options.timeline);
    take(arguments.evidence, options.evidence);
    if (arguments.noRedactions)
        options.redactions.clear();
    const RedactionRules asked = redactionsAsked(session, arguments);
    if (report.reportType != kCaseType && !asked.empty())
        throw UsageError("--leave-out and --blur hold for --type case: the other types show all");
    if (report.reportType != kCaseType && !options.redactions.empty())
        session.err << "the redactions that the project keeps hold for --type case alone\n";
    options.redactions.insert(options.redactions.end(), asked.begin(), asked.end());
    if (options.redactions.size() > kMostRedactions)
        throw UsageError(fmt::format("at most {} redactions were expected", kMostRedactions));
    logFailureOf(session.program.log, kProcedure, [&] {
        std::vector<std::string> notes; // what values fit, the report itself tells
        notesOnRedactions(session.program.state.projectDB.connection(), options.redactions,
                          NotedThings::names, session.task, notes);
        for (const std::string &note : notes)
            session.err << printable(note) << '\n';
    });
    options.content = contentText(arguments.rows);
}

/// What a report came to.
struct Made {
    fs::path index;
    std::size_t files = 0;
    std::int64_t rows = 0;
    std::size_t gaps = 0;   ///< rows, cached files and pages that aren't as they should be
    bool isRedacted = true; ///< by each rule
};

/// Nothing when it was cancelled.
std::optional<Made> make(Session &session, const Arguments &arguments, const RowIds &ids) {
    SubTask making(session.task, 0, kMaking);
    ReportTools tools(session.program, making, session.scratch());
    readReportOptions(session.program.settings, tools.report);
    const auto fault = failureOf(session.program.log, kProcedure,
                                 [&] { readProjectReportOptions(session.program, tools.report); });
    if (fault)
        throw StorageFailure(fmt::format("the redactions that the project keeps: {}", *fault));
    setOptions(tools.report, arguments);
    setCaseOptions(session, tools.report, arguments);
    if (arguments.remember && (!writeProjectReportOptions(session.program, tools.report) ||
                               !keepReportTags(session.program, arguments.rows.tags)))
        session.err << "the choices could not be kept with the project\n";
    const bool finished = tools.run(ids);
    if (!finished && !tools.report.cancel)
        throw StorageFailure(fmt::format("the report could not be made; see \"{}\"",
                                         textOf(session.program.log.path())));
    if (!finished)
        return std::nullopt;
    for (const std::string &note : notesOf(tools.report))
        session.err << note << '\n';
    if (!tools.report.unmetRedactions.empty())
        session.err << printable(unmetText(tools.report.unmetRedactions))
                    << ": look for another spelling before you hand it over\n";
    fs::create_directories(arguments.out);
    removePublished(arguments.out);
    SubTask publishing(session.task, kMaking, 1);
    const int type = tools.report.reportType;
    const Published published =
        publishReport(ReportFolder::of(session.scratch(), type), type, arguments.out, publishing);
    if (published.cancelled)
        return std::nullopt;
    const fs::path index = ReportFolder::at(arguments.out).index(type);
    notePublish(session.program, index, published);
    return Made{index, published.files, rowsReported(session.program.state.projectDB.connection()),
                gapsOf(tools.report), tools.report.unmetRedactions.empty()};
}

Exit run(Session &session, const Arguments &arguments) {
    if (arguments.all && arguments.rows.tagged)
        throw UsageError("either --all or --tagged was expected");
    checkReportedRows(arguments.rows);
    redactionsAsked(session, arguments);
    session.program.state.filters = filtersFrom(arguments.rows.rows.filter);
    session.openForNote(arguments.project);
    Program &program = session.program;
    checkTarget(arguments, program.state);
    checkPicture("--logo", arguments.logo.value_or(""));
    checkPicture("--thumbnail", arguments.thumbnail);
    program.state.wideRecordIds |= arguments.wideIds;
    const auto ids = idsOf(session, arguments.rows);
    const auto made = ids ? make(session, arguments, *ids) : std::nullopt;
    session.task.clear();
    if (made)
        session.out << fmt::format("{} reported, {} written\n{}\n",
                                   counted(static_cast<std::uint64_t>(made->rows), "row"),
                                   counted(made->files, "file"), printable(textOf(made->index)));
    closeProject(program);
    if (!made)
        return Exit::interrupted;
    if (!made->isRedacted)
        return Exit::notAllRedacted;
    return made->gaps > 0 ? Exit::rowsNotRead : Exit::ok;
}

std::vector<Argument> classicOptions(Arguments &given) {
    return {flag("--notes,!--no-notes", given.notes, "Notes of rows"),
            flag("--audit,!--no-audit", given.audit, "Replaced references of pages"),
            flag("--links,!--no-links", given.links, "Visited links of pages"),
            flag("--time-rebuilt,!--no-time-rebuilt", given.timeRebuilt, "When a page was rebuilt"),
            flag("--data-source,!--no-data-source", given.dataSource, "Column of a tabular report"),
            flag("--user,!--no-user", given.user, "Column of a tabular report"),
            flag("--trail,!--no-trail", given.trail, "What was done with the case"),
            flag("--origins,!--no-origins", given.origins,
                 "Where the values of rows with the tick (of a case report also: with a tag) come "
                 "from"),
            value("--url-width", given.urlWidth, "Width of the URL column in pixels").from1(),
            flag("--no-scripts", given.noScripts, "Changes nothing: no script leaves with a page"),
            flag("--wide-ids", given.wideIds, "Parts of pages may have ids above 32767")};
}

std::vector<Argument> caseOptions(Arguments &given) {
    return {
        choice<CaseCards>(
            "--cards", given.cards,
            {{"ticked", CaseCards::ticked},
             {"tagged", CaseCards::tagged},
             {"all", CaseCards::all},
             {"none", CaseCards::none}},
            "Of a case report: rows that have a card with their content; tagged: with the tick or "
            "a tag by name"),
        flag("--tag-notes,!--no-tag-notes", given.tagNotes,
             "Of a case report: what was noted of tags"),
        flag("--timeline,!--no-timeline", given.timeline, "Of a case report: the picture of time"),
        flag("--evidence,!--no-evidence", given.evidence,
             "Of a case report: the files of evidence with their hashes"),
        value("--leave-out", given.leaveOut,
              "Of a case report: leave out host=NAME, person=NAME, value=TEXT, picture=ROW"),
        value("--blur", given.blur, "The same, but what stands there is made unreadable"),
        flag("--no-redactions", given.noRedactions,
             "Without the redactions that the project keeps"),
        flag("--remember", given.remember, "Keep these choices with the project")};
}

std::vector<Argument> allOptions(Arguments &given) {
    std::vector<Argument> all = {
        projectWord(given.project),
        value("--type", given.type,
              "graphical (a card a row), tabular (a line a row) or case (cover, cards, tables)")
            .oneOf(kTypes),
        value("--out", given.out, "Folder that becomes the report").required(),
        flag("--overwrite", given.overwrite, "Replace the report in a folder"),
        flag("--all", given.all, "All rows of the query (this is the default)"),
        flag("--descending", given.descending, "Newest rows first"),
        value("--title", given.title, "Title of the report"),
        value("--case-number", given.caseNumber, "Case number"),
        value("--organization", given.organization, "Organization"),
        value("--reported-by", given.reportedBy, "Who prepared the report"),
        value("--logo", given.logo, "Picture in the head of the report"),
        value("--thumbnail", given.thumbnail, "Picture where a row has none"),
        flag("--no-header", given.noHeader, "Leave the head out")};
    for (auto &&part : {reportedRowsOptions(given.rows), classicOptions(given), caseOptions(given)})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

} // namespace

Command reportCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "report",
            .what = "Write a report of rows as a folder of pages and pictures",
            .readme = {"`report PROJECT --type KIND --out FOLDER`",
                       "writes a graphical, tabular or case report to hand over; `--search`, "
                       "`--from`, `--leave-out`, `--blur`"},
            .examples =
                {{"report case.nvp --type graphical --tagged --out report", "to be handed over"},
                 {"report case.nvp --type tabular --query \"TOP 25 URLs\" --out top --trail", ""},
                 {"report case.nvp --type case --from 2011-03-01 --blur person=mara --out handover",
                  "without a name"}},
            .arguments = allOptions(*given),
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
