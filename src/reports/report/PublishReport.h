#pragma once

#include "base/TaskMonitor.h"
#include "reports/report/ReportFolder.h"

#include <cstddef>
#include <filesystem>

namespace nv {

struct Published {
    std::size_t files = 0;
    bool cancelled = false;
};

/// Whether there is a finished report of this type.
bool isReportThere(const ReportFolder &report, int reportType);

/// Copies the finished report to `target`, an existing folder: its page and its images, and for a
/// graphical report the pictures and the folder of each row. Other files of `target` stay.
/// The page comes last: after a cancel, a failure or a power cut `target` holds none. Throws what
/// can't be copied, and when a folder in `target` is a link.
Published publishReport(const ReportFolder &report, int reportType,
                        const std::filesystem::path &target, TaskMonitor &task);

/// Takes an earlier report out of `target`, and nothing else: what it held and the next one doesn't
/// would be handed over with it. A folder without a report's page stays as it is.
void removePublished(const std::filesystem::path &target);
/// The same for a report of one type, which leaves one of the other where it is.
void removePublished(const std::filesystem::path &target, int reportType);

} // namespace nv
