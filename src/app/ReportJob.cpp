#include "app/ReportJob.h"

#include "app/DrawingTools.h"
#include "app/Project.h"
#include "app/Settings.h"
#include "app/Trail.h"
#include "base/Files.h"

#include <fmt/format.h>

#include <array>

namespace nv {

namespace {

ReportSettings settingsOf(const Program &program) {
    ReportSettings settings;
    settings.images = program.paths.images();
    settings.dates = dateSettings(program);
    settings.version = program.thisClass.AppVersion;
    constexpr NumberKey kWidth = "ReportThumbnailWidth";
    const int width = readNumber(program.settings, kWidth);
    settings.ReportThumbnailWidth = width > 0 ? width : defaultNumber(kWidth);
    settings.ThumbnailRedrawTimeout =
        std::chrono::seconds(program.thisClass.ThumbnailRedrawTimeout);
    return settings;
}

/// The options that are kept.
struct KeptFlag {
    FlagKey key;
    bool ReportClass::*flag;
};
constexpr std::array<KeptFlag, 8> kFlags = {{
    {"UseCustomLogo", &ReportClass::UseCustomLogo},
    {"IncludeAudit", &ReportClass::IncludeAudit},
    {"IncludeLinkAnalysis", &ReportClass::IncludeLinkAnalysis},
    {"IncludeNotes", &ReportClass::IncludeNotes},
    {"IncludeTimeRebuilt", &ReportClass::IncludeTimeRebuilt},
    {"IncludeDataSource", &ReportClass::IncludeDataSource},
    {"IncludeUser", &ReportClass::IncludeUser},
    {"IncludeCaseTrail", &ReportClass::IncludeCaseTrail},
}};

struct KeptText {
    TextKey key;
    std::string ReportClass::*text;
};
constexpr std::array<KeptText, 4> kTexts = {{
    {"CaseNumber", &ReportClass::CaseNumber},
    {"ReportTitle", &ReportClass::ReportTitle},
    {"Organization", &ReportClass::Organization},
    {"ReportedBy", &ReportClass::ReportedBy},
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
        report.*kept.text = readText(settings, kept.key);
    for (const KeptFlag &kept : kFlags)
        report.*kept.flag = readFlag(settings, kept.key);
    report.ReportType = readNumber(settings, "ReportType");
    report.DefaultThumbnailPath = readText(settings, "DefaultThumbnailPath");
    report.AgencyLogoPath = readText(settings, "AgencyLogoPath");
}

void writeReportOptions(const ReportClass &report, IniFile &settings) {
    for (const KeptText &kept : kTexts)
        writeText(settings, kept.key, report.*kept.text);
    for (const KeptFlag &kept : kFlags)
        writeFlag(settings, kept.key, report.*kept.flag);
    writeFlag(settings, "UseDefaultThumbnailPath", report.UseDefaultThumbnailPath);
    writeNumber(settings, "ReportType", report.ReportType);
    writeText(settings, "DefaultThumbnailPath", textOf(report.DefaultThumbnailPath));
    writeText(settings, "AgencyLogoPath", textOf(report.AgencyLogoPath));
}

} // namespace nv
