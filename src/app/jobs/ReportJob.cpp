#include "app/jobs/ReportJob.h"

#include "app/jobs/Trail.h"
#include "app/program/DrawingTools.h"
#include "app/project/Project.h"
#include "app/settings/Settings.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/project/ProjectFields.h"
#include "db/sql/ReadOnlyConnection.h"
#include "reports/case/CaseReport.h"

#include <fmt/format.h>

#include <array>
#include <string_view>
#include <utility>

namespace nv {

namespace {

ReportSettings settingsOf(const Program &program) {
    ReportSettings settings;
    settings.images = program.paths.images();
    settings.dates = dateSettings(program);
    settings.version = program.state.appVersion;
    constexpr NumberKey kWidth = "ReportThumbnailWidth";
    const int width = readNumber(program.settings, kWidth);
    settings.reportThumbnailWidth = width > 0 ? width : defaultNumber(kWidth);
    settings.thumbnailRedrawTimeout = std::chrono::seconds(program.state.thumbnailRedrawTimeout);
    return settings;
}

/// The options that are kept.
struct KeptFlag {
    FlagKey key;
    bool ReportWriter::*flag;
};
constexpr std::array<KeptFlag, 9> kFlags = {{
    {"UseCustomLogo", &ReportWriter::useCustomLogo},
    {"IncludeAudit", &ReportWriter::includeAudit},
    {"IncludeLinkAnalysis", &ReportWriter::includeLinkAnalysis},
    {"IncludeNotes", &ReportWriter::includeNotes},
    {"IncludeTimeRebuilt", &ReportWriter::includeTimeRebuilt},
    {"IncludeDataSource", &ReportWriter::includeDataSource},
    {"IncludeUser", &ReportWriter::includeUser},
    {"IncludeCaseTrail", &ReportWriter::includeCaseTrail},
    {"IncludeOrigins", &ReportWriter::includeOrigins},
}};

struct KeptText {
    TextKey key;
    std::string ReportWriter::*text;
};
constexpr std::array<KeptText, 4> kTexts = {{
    {"CaseNumber", &ReportWriter::caseNumber},
    {"ReportTitle", &ReportWriter::reportTitle},
    {"Organization", &ReportWriter::organization},
    {"ReportedBy", &ReportWriter::reportedBy},
}};

} // namespace

ReportTools::ReportTools(Program &program, TaskMonitor &task, const std::filesystem::path &folder)
    : ReportTools(program,
                  {program.state.projectDB.connection(), program.state.gmtZone, program.log}, task,
                  folder, folder) {}

ReportTools::ReportTools(Program &program, const RecordsFrom &from, TaskMonitor &task,
                         const std::filesystem::path &folder, const std::filesystem::path &scratch)
    : m_program(program), m_records(program, from, task, scratch),
      m_drawing(canDraw() ? makeDrawing(scratch) : nullptr), m_context{m_records.context(),
                                                                       from.zone,
                                                                       program.around.clock,
                                                                       m_drawing.get(),
                                                                       settingsOf(program)},
      m_folder(folder), report(m_context) {}

bool ReportTools::run(std::span<const std::int32_t> ids) {
    const bool isMade = make(ids);
    if (isMade)
        noteReport(m_program, report, m_rows);
    return isMade;
}

bool ReportTools::make(std::span<const std::int32_t> ids) {
    const ReportRows rows = report.includeAll ? ReportRows::all : ReportRows::tagged;
    const RebuildContext &ctx = m_context.rebuild;
    const ReportFolder folder = ReportFolder::of(m_folder, report.reportType);
    // Nothing of an earlier report may be taken for this one, wherever it stops.
    std::filesystem::remove(folder.index(report.reportType));
    SubTask listing(ctx.task, 0, 0); // nothing, beside what comes
    report.cancel = fillSortTable(ctx.project, ids, rows, listing) == Walk::Cancelled;
    if (report.cancel)
        return false;
    if (report.reportType == kCaseType)
        createCaseReport(report, m_context, m_folder);
    else if (report.reportType == kGraphicalType)
        report.createGraphicalReport(m_folder);
    else
        report.createTabularReport(m_folder);
    if (report.cancel || !std::filesystem::is_regular_file(report.reportFilePath))
        return false;
    m_rows = rowsReported(ctx.project);
    return true;
}

namespace {

/// What belongs to one case only, and its name in the project.
struct KeptWithProject {
    const char *name;
    std::string ReportWriter::*text;
};
constexpr std::array<KeptWithProject, 3> kOfProject = {{
    {"ReportCaseNumber", &ReportWriter::caseNumber},
    {"ReportReportedBy", &ReportWriter::reportedBy},
    {"ReportReportTitle", &ReportWriter::reportTitle},
}};
constexpr const char *kRedactionsName = "ReportRedactions";
constexpr const char *kCardsName = "ReportCards";
constexpr const char *kTimelineName = "ReportTimeline";
constexpr const char *kEvidenceName = "ReportEvidence";
constexpr const char *kTagNotesName = "ReportTagNotes";
constexpr std::array<std::pair<CaseCards, std::string_view>, 4> kCardWords = {
    {{CaseCards::ticked, "ticked"},
     {CaseCards::tagged, "tagged"},
     {CaseCards::all, "all"},
     {CaseCards::none, "none"}}};
/// There once the options were kept, so that an empty text isn't taken for none.
constexpr const char *kKeptName = "ReportOptionsKept";

} // namespace

bool readProjectReportOptions(Program &program, ReportWriter &report) {
    const ProjectFields fields(program.state.projectDB.connection(), program.log);
    if (fields.getDefault(kKeptName).empty())
        return false;
    for (const KeptWithProject &kept : kOfProject)
        report.*kept.text = fields.getDefault(kept.name);
    CaseOptions &options = report.caseOptions;
    options.timeline = fields.getDefault(kTimelineName) != "False";
    options.evidence = fields.getDefault(kEvidenceName) != "False";
    const std::string cards = fields.getDefault(kCardsName);
    options.tagNotes = fields.getDefault(kTagNotesName) != "False";
    options.cards = CaseCards::ticked;
    for (const auto &[choice, word] : kCardWords)
        if (cards == word)
            options.cards = choice;
    // Lines that can't be read must not make a report without them.
    options.redactions = redactionRules(fields.getDefault(kRedactionsName));
    return true;
}

bool writeProjectReportOptions(Program &program, const ReportWriter &report) {
    if (isReadOnly(program.state.projectDB.connection()))
        return true;
    ProjectFields fields(program.state.projectDB.connection(), program.log);
    bool isWritten = true;
    bool isChanged = false;
    const auto keep = [&](const char *name, const std::string &text) {
        isChanged = isChanged || fields.getDefault(name) != trim(text);
        isWritten = fields.saveDefaultSetting(name, text) && isWritten;
    };
    for (const KeptWithProject &kept : kOfProject)
        keep(kept.name, report.*kept.text);
    const CaseOptions &options = report.caseOptions;
    keep(kTimelineName, options.timeline ? "True" : "False");
    keep(kEvidenceName, options.evidence ? "True" : "False");
    keep(kTagNotesName, options.tagNotes ? "True" : "False");
    for (const auto &[choice, word] : kCardWords)
        if (options.cards == choice)
            keep(kCardsName, std::string(word));
    keep(kRedactionsName, linesOf(options.redactions));
    keep(kKeptName, "True");
    if (isWritten && isChanged)
        noteReportChoices(program, report);
    return isWritten;
}

void readReportOptions(const IniFile &settings, ReportWriter &report) {
    for (const KeptText &kept : kTexts)
        report.*kept.text = readText(settings, kept.key);
    for (const KeptFlag &kept : kFlags)
        report.*kept.flag = readFlag(settings, kept.key);
    report.reportType = readNumber(settings, "ReportType");
    report.defaultThumbnailPath = readText(settings, "DefaultThumbnailPath");
    report.agencyLogoPath = readText(settings, "AgencyLogoPath");
}

bool writeReportOptions(const ReportWriter &report, IniFile &settings) {
    // That of the last one stands: a write that succeeds brings those that failed before.
    bool isWritten = true;
    const auto note = [&isWritten](bool done) { isWritten = done; };
    note(writeText(settings, "Organization", report.organization));
    for (const KeptFlag &kept : kFlags)
        note(writeFlag(settings, kept.key, report.*kept.flag));
    note(writeFlag(settings, "UseDefaultThumbnailPath", report.useDefaultThumbnailPath));
    note(writeNumber(settings, "ReportType", report.reportType));
    note(writeText(settings, "DefaultThumbnailPath", textOf(report.defaultThumbnailPath)));
    note(writeText(settings, "AgencyLogoPath", textOf(report.agencyLogoPath)));
    return isWritten;
}

} // namespace nv
