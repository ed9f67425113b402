#include "app/Project.h"
#include "app/ReportJob.h"
#include "app/Trail.h"
#include "app/cli/LoadedTable.h"
#include "app/cli/OutputPath.h"
#include "app/cli/ReportCommands.h"
#include "app/cli/Session.h"
#include "base/Files.h"
#include "base/Text.h"
#include "reports/PublishReport.h"

#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

constexpr double kMaking = 0.9; ///< of the whole work

void checkTarget(const ReportArguments &arguments, const fs::path &base) {
    const fs::path out = arguments.out;
    refuseEvidence(out, base);
    if (fs::exists(out) && !fs::is_directory(out))
        throw UsageError(fmt::format("--out {}: a folder was expected", arguments.out));
    if (fs::exists(out) && !fs::is_empty(out) && !arguments.overwrite)
        throw UsageError(fmt::format("the folder \"{}\" is not empty; --overwrite replaces the "
                                     "report in it",
                                     textOf(out)));
}

void checkPicture(const char *option, const std::string &path) {
    if (!path.empty() && !fs::is_regular_file(path))
        throw UsageError(fmt::format("{} {}: there is no such file", option, path));
}

RowIds rowsOf(Session &session, const ReportArguments &arguments) {
    SQLite::Database &project = session.program.thisClass.ProjectDB.connection();
    checkQuery(session, arguments.query);
    RowIds ids;
    collectIds(project, loadQuery({arguments.query, false, {}}), session.task, ids);
    return ids;
}

void setOptions(ReportClass &report, const ReportArguments &arguments) {
    report.ReportType = arguments.type == "graphical" ? 0 : 1;
    report.IncludeAll = !arguments.tagged;
    if (!arguments.title.empty())
        report.ReportTitle = arguments.title;
    report.CaseNumber = arguments.caseNumber;
    report.Organization = arguments.organization;
    report.ReportedBy = arguments.reportedBy;
    report.AgencyLogoPath = arguments.logo;
    report.UseCustomLogo = !arguments.logo.empty();
    report.DefaultThumbnailPath = arguments.thumbnail;
    report.UseDefaultThumbnailPath = !arguments.thumbnail.empty();
    report.IncludeNotes = arguments.notes;
    report.IncludeAudit = arguments.audit;
    report.IncludeLinkAnalysis = arguments.links;
    report.IncludeTimeRebuilt = arguments.timeRebuilt;
    report.IncludeDataSource = arguments.dataSource;
    report.IncludeUser = arguments.user;
    report.IncludeCaseTrail = arguments.trail;
    report.SkipHeader = arguments.noHeader;
    report.SortAscending = !arguments.descending;
    report.URLColWidth = arguments.urlWidth;
}

/// Nothing when it was cancelled.
std::optional<Published> make(Session &session, const ReportArguments &arguments, const RowIds &ids,
                              Exit &read) {
    SubTask making(session.task, 0, kMaking);
    ReportTools tools(session.program, making, session.scratch());
    setOptions(tools.report, arguments);
    const bool finished = tools.run(ids);
    if (!finished && !tools.report.Cancel)
        throw StorageFailure(fmt::format("the report could not be made; see \"{}\"",
                                         textOf(session.program.log.path())));
    if (!finished)
        return std::nullopt;
    for (const std::string &note : notesOf(tools.report))
        session.err << note << '\n';
    read = tools.report.RecordsFailed > 0 ? Exit::rowsNotRead : Exit::ok;
    fs::create_directories(arguments.out);
    removePublished(arguments.out);
    SubTask publishing(session.task, kMaking, 1);
    const Published published = PublishReport(ReportFolder(session.scratch()),
                                              tools.report.ReportType, arguments.out, publishing);
    if (published.cancelled)
        return std::nullopt;
    notePublish(session.program, ReportFolder::at(arguments.out).index(tools.report.ReportType),
                published);
    return published;
}

} // namespace

Exit reportCommand(Session &session, const ReportArguments &arguments) {
    if (arguments.all && arguments.tagged)
        throw UsageError("either --all or --tagged was expected");
    session.open(arguments.project);
    Program &program = session.program;
    checkTarget(arguments, program.thisClass.RootPath);
    checkPicture("--logo", arguments.logo);
    checkPicture("--thumbnail", arguments.thumbnail);
    program.thisClass.DisableScriptTags = arguments.noScripts;
    program.thisClass.WideRecordIds |= arguments.wideIds;
    Exit read = Exit::ok;
    const auto published = make(session, arguments, rowsOf(session, arguments), read);
    session.task.clear();
    if (!published) {
        closeProject(program);
        return Exit::interrupted;
    }
    const fs::path index =
        ReportFolder::at(arguments.out).index(arguments.type == "graphical" ? 0 : 1);
    session.out << fmt::format(
        "{} reported, {} written\n{}\n",
        counted(static_cast<std::uint64_t>(rowsReported(program.thisClass.ProjectDB.connection())),
                "row"),
        counted(published->files, "file"), textOf(index));
    closeProject(program);
    return read;
}

} // namespace nv::cli
