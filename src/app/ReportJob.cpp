#include "app/ReportJob.h"

#include "app/DrawingTools.h"
#include "app/IniSections.h"
#include "app/Project.h"
#include "app/Trail.h"
#include "base/Files.h"

#include <fmt/format.h>

#include <array>

namespace nv {

namespace {

constexpr std::string_view kSection = "REPORT";
constexpr int kThumbnailWidth = 200;

ReportSettings settingsOf(const Program &program) {
    ReportSettings settings;
    settings.images = program.paths.images();
    settings.dates = dateSettings(program);
    settings.version = program.thisClass.AppVersion;
    // Whoever never chose a width has none in the settings.
    const int width =
        program.settings.ReadIniValue(kThumbnailsSection, "ReportThumbnailWidth", kThumbnailWidth);
    settings.ReportThumbnailWidth = width > 0 ? width : kThumbnailWidth;
    settings.ThumbnailRedrawTimeout =
        std::chrono::seconds(program.thisClass.ThumbnailRedrawTimeout);
    return settings;
}

/// The Boolean options that are kept, and their first values.
struct KeptFlag {
    std::string_view key;
    bool ReportClass::*flag;
    bool byDefault;
};
constexpr std::array<KeptFlag, 8> kFlags = {{
    {"UseCustomLogo", &ReportClass::UseCustomLogo, false},
    {"IncludeAudit", &ReportClass::IncludeAudit, false},
    {"IncludeLinkAnalysis", &ReportClass::IncludeLinkAnalysis, false},
    {"IncludeNotes", &ReportClass::IncludeNotes, true},
    {"IncludeTimeRebuilt", &ReportClass::IncludeTimeRebuilt, true},
    {"IncludeDataSource", &ReportClass::IncludeDataSource, true},
    {"IncludeUser", &ReportClass::IncludeUser, true},
    {"IncludeCaseTrail", &ReportClass::IncludeCaseTrail, false},
}};

struct KeptText {
    std::string_view key;
    std::string ReportClass::*text;
    std::string_view byDefault;
};
constexpr std::array<KeptText, 4> kTexts = {{
    {"CaseNumber", &ReportClass::CaseNumber, ""},
    {"ReportTitle", &ReportClass::ReportTitle, ReportClass::kDefaultReportTitle},
    {"Organization", &ReportClass::Organization, ""},
    {"ReportedBy", &ReportClass::ReportedBy, ""},
}};

} // namespace

ReportTools::ReportTools(Program &program, TaskMonitor &task, const std::filesystem::path &folder)
    : m_program(program), m_records(program, task, folder),
      m_drawing(canDraw() ? makeDrawing(folder) : nullptr), m_context{m_records.context(),
                                                                      program.thisClass.GMTZone,
                                                                      program.around.clock,
                                                                      m_drawing.get(),
                                                                      settingsOf(program)},
      m_folder(folder), report(m_context) {}

bool ReportTools::run(std::span<const std::int32_t> ids) {
    const ReportRows rows = report.IncludeAll ? ReportRows::all : ReportRows::tagged;
    const RebuildContext &ctx = m_context.rebuild;
    const ReportFolder folder(m_folder);
    // Nothing of an earlier report may be taken for this one, wherever it stops.
    std::filesystem::remove(folder.index(report.ReportType));
    report.Cancel = fillSortTable(ctx.project, ids, rows, ctx.task) == Walk::Cancelled;
    if (report.Cancel)
        return false;
    if (report.ReportType == 0)
        report.CreateGraphicalReport(m_folder);
    else
        report.CreateTabularReport(m_folder);
    if (report.Cancel || !std::filesystem::is_regular_file(report.ReportFilePath))
        return false;
    noteReport(m_program, report, rowsReported(ctx.project));
    return true;
}

void readReportOptions(const IniFile &settings, ReportClass &report) {
    for (const KeptText &kept : kTexts)
        report.*kept.text = settings.ReadIniValue(kSection, kept.key, kept.byDefault);
    for (const KeptFlag &kept : kFlags)
        report.*kept.flag = settings.ReadIniValue(kSection, kept.key, kept.byDefault);
    report.ReportType = settings.ReadIniValue(kSection, "ReportType", 0);
    report.DefaultThumbnailPath = settings.ReadIniValue(kSection, "DefaultThumbnailPath", "");
    report.AgencyLogoPath = settings.ReadIniValue(kPathsSection, "AgencyLogoPath", "");
}

void writeReportOptions(const ReportClass &report, IniFile &settings) {
    for (const KeptText &kept : kTexts)
        settings.WriteIniValue(kSection, kept.key, std::string_view(report.*kept.text));
    for (const KeptFlag &kept : kFlags)
        settings.WriteIniValue(kSection, kept.key, report.*kept.flag);
    settings.WriteIniValue(kSection, "UseDefaultThumbnailPath", report.UseDefaultThumbnailPath);
    settings.WriteIniValue(kSection, "ReportType", fmt::format("{}", report.ReportType));
    settings.WriteIniValue(kSection, "DefaultThumbnailPath", textOf(report.DefaultThumbnailPath));
    settings.WriteIniValue(kPathsSection, "AgencyLogoPath", textOf(report.AgencyLogoPath));
}

} // namespace nv
