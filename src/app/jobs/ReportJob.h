#pragma once

#include "app/jobs/RecordTools.h"
#include "reports/report/ReportWriter.h"
#include "reports/report/SortTable.h"

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
    /// For a thread of its own, see RecordTools. Content is fetched into `scratch`, an existing
    /// folder that nobody else uses meanwhile.
    ReportTools(Program &program, const RecordsFrom &from, TaskMonitor &task,
                const std::filesystem::path &folder, const std::filesystem::path &scratch);

    /// The driver: makes the report of `ids`, the rows of the table, or with `includeAll` off of
    /// those that are ticked. True when it was finished, which the case trail then tells. Throws
    /// StorageFailure.
    bool run(std::span<const std::int32_t> ids);
    /// The same, and the case trail isn't told.
    bool make(std::span<const std::int32_t> ids);
    /// How many rows it holds, once it was made.
    std::int64_t rows() const { return m_rows; }

  private:
    Program &m_program;
    RecordTools m_records;
    std::unique_ptr<Drawing> m_drawing; ///< none when this build can't draw
    ReportContext m_context;
    std::filesystem::path m_folder;
    std::int64_t m_rows = 0;

  public:
    ReportWriter report;
};

/// What the open project keeps of its last report: the case number, the examiner, the title, what
/// is redacted. False when it keeps none yet. Throws std::invalid_argument for redactions that
/// can't be read: none of them may be missed.
bool readProjectReportOptions(Program &program, ReportWriter &report);
/// False when they can't be written. A project that is only read keeps none.
[[nodiscard]] bool writeProjectReportOptions(Program &program, const ReportWriter &report);

/// The options of the last report, and back. `useDefaultThumbnailPath` is kept but never read. The
/// case number, the examiner and the title are read and not written: those of one case would stand
/// in the next.
void readReportOptions(const IniFile &settings, ReportWriter &report);
/// False when they can't be written.
[[nodiscard]] bool writeReportOptions(const ReportWriter &report, IniFile &settings);

} // namespace nv
