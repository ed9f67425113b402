#pragma once

#include "app/jobs/RecordTools.h"
#include "reports/ReportWriter.h"
#include "reports/SortTable.h"

#include <filesystem>
#include <memory>
#include <span>

namespace nv {

/// What a report is made with while the project stays open: make it, set the options of `report`,
/// run it, let it go.
class ReportTools {
  public:
    /// `folder` is an existing folder of the program's own; the report lies in its "Report".
    ReportTools(Program &program, TaskMonitor &task, const std::filesystem::path &folder);

    /// The driver: makes the report of `ids`, the rows of the table, or with `includeAll` off of
    /// those that are ticked. True when it was finished, which the case trail then tells. Throws
    /// StorageFailure.
    bool run(std::span<const std::int32_t> ids);

  private:
    Program &m_program;
    RecordTools m_records;
    std::unique_ptr<Drawing> m_drawing; ///< none when this build can't draw
    ReportContext m_context;
    std::filesystem::path m_folder;

  public:
    ReportWriter report;
};

/// The options of the last report, and back. `useDefaultThumbnailPath` is kept but never read.
void readReportOptions(const IniFile &settings, ReportWriter &report);
/// False when they can't be written.
[[nodiscard]] bool writeReportOptions(const ReportWriter &report, IniFile &settings);

} // namespace nv
