#pragma once

#include "reports/report/ReportContext.h"

#include <filesystem>

namespace nv {

class ReportWriter;
struct ReportFolder;

/// Makes a report of a case of the rows of `URLSortTable` into the folder that ReportFolder names
/// for its type, by the options of `report`, and sets there what became of it: `reportFilePath`,
/// `cancel`, the counts of what failed. A failure is logged, and leaves no first page. Throws
/// StorageFailure.
void createCaseReport(ReportWriter &report, const ReportContext &ctx,
                      const std::filesystem::path &parent);

/// The list of a report's files, each with its size and hash. It comes before the first page, whose
/// own hash it holds.
inline constexpr const char *kReportFiles = "files.csv";

} // namespace nv
