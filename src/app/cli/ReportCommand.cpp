#include "app/Project.h"
#include "app/ReportJob.h"
#include "app/Trail.h"
#include "app/cli/FilterCommands.h"
#include "app/cli/HandOver.h"
#include "app/cli/LoadedTable.h"
#include "app/cli/OutputPath.h"
#include "app/cli/ReportCommands.h"
#include "app/cli/Session.h"
#include "base/Files.h"
#include "base/Text.h"
#include "reports/PictureKind.h"
#include "reports/PublishReport.h"

#include <fmt/format.h>

#include <optional>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

constexpr double kMaking = 0.9; ///< of the whole work

void checkTarget(const ReportArguments &arguments, ThisClass &state) {
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
std::optional<RowIds> rowsOf(Session &session, const ReportArguments &arguments) {
    Program &program = session.program;
    UrlTable table(program.thisClass.ProjectDB.connection(), program.log,
                   program.thisClass.GMTZone);
    const RowChoice choice{arguments.query, !arguments.host.empty(), arguments.host};
    if (loadTable(session, choice, table) == LoadResult::Cancelled)
        return std::nullopt;
    return table.ids();
}

template <class Value>
void take(const std::optional<Value> &said, Value &option) {
    if (said)
        option = *said;
}

void setOptions(ReportClass &report, const ReportArguments &arguments) {
    if (arguments.type)
        report.ReportType = *arguments.type == "graphical" ? 0 : 1;
    report.IncludeAll = !arguments.tagged;
    take(arguments.title, report.ReportTitle);
    take(arguments.caseNumber, report.CaseNumber);
    take(arguments.organization, report.Organization);
    take(arguments.reportedBy, report.ReportedBy);
    if (arguments.logo) {
        report.AgencyLogoPath = *arguments.logo;
        report.UseCustomLogo = !arguments.logo->empty();
    }
    report.DefaultThumbnailPath = arguments.thumbnail;
    report.UseDefaultThumbnailPath = !arguments.thumbnail.empty();
    take(arguments.notes, report.IncludeNotes);
    take(arguments.audit, report.IncludeAudit);
    take(arguments.links, report.IncludeLinkAnalysis);
    take(arguments.timeRebuilt, report.IncludeTimeRebuilt);
    take(arguments.dataSource, report.IncludeDataSource);
    take(arguments.user, report.IncludeUser);
    take(arguments.trail, report.IncludeCaseTrail);
    report.SkipHeader = arguments.noHeader;
    report.SortAscending = !arguments.descending;
    report.URLColWidth = arguments.urlWidth;
}

/// What a report came to.
struct Made {
    fs::path index;
    std::size_t files = 0;
    std::int64_t rows = 0;
    std::size_t unread = 0; ///< rows of the project, cached files, pages that lack parts
};

/// Nothing when it was cancelled.
std::optional<Made> make(Session &session, const ReportArguments &arguments, const RowIds &ids) {
    SubTask making(session.task, 0, kMaking);
    ReportTools tools(session.program, making, session.scratch());
    readReportOptions(session.program.settings, tools.report);
    setOptions(tools.report, arguments);
    const bool finished = tools.run(ids);
    if (!finished && !tools.report.Cancel)
        throw StorageFailure(fmt::format("the report could not be made; see \"{}\"",
                                         textOf(session.program.log.path())));
    if (!finished)
        return std::nullopt;
    for (const std::string &note : notesOf(tools.report))
        session.err << note << '\n';
    fs::create_directories(arguments.out);
    removePublished(arguments.out);
    SubTask publishing(session.task, kMaking, 1);
    const Published published = PublishReport(ReportFolder(session.scratch()),
                                              tools.report.ReportType, arguments.out, publishing);
    if (published.cancelled)
        return std::nullopt;
    const fs::path index = ReportFolder::at(arguments.out).index(tools.report.ReportType);
    notePublish(session.program, index, published);
    return Made{
        index, published.files, rowsReported(session.program.thisClass.ProjectDB.connection()),
        tools.report.RecordsFailed + tools.report.FilesFailed + tools.report.PagesIncomplete};
}

} // namespace

Exit reportCommand(Session &session, const ReportArguments &arguments) {
    if (arguments.all && arguments.tagged)
        throw UsageError("either --all or --tagged was expected");
    session.program.thisClass.Filters = filtersFrom(arguments.filter);
    session.openForNote(arguments.project);
    Program &program = session.program;
    checkTarget(arguments, program.thisClass);
    checkPicture("--logo", arguments.logo.value_or(""));
    checkPicture("--thumbnail", arguments.thumbnail);
    program.thisClass.WideRecordIds |= arguments.wideIds;
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

} // namespace nv::cli
