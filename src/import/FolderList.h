#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "import/ScanGaps.h"
#include "readers/Evidence.h"

#include <filesystem>
#include <vector>

namespace nv {

enum class Depth { thisFolder, allBelow };

/// `root` and, with `allBelow`, every folder below it, depth first. Folders that can't be read are
/// logged, noted in `gaps` and not listed. Ends early when the task is cancelled. The bottom
/// counter of its steps is how many files were seen.
std::vector<std::filesystem::path> getFolderList(const Evidence &evidence,
                                                 const std::filesystem::path &root, Depth depth,
                                                 TaskMonitor &task, FailureLog &log,
                                                 ScanGaps &gaps);

} // namespace nv
