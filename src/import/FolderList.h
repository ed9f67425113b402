#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "import/ScanGaps.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace nv {

enum class Depth { thisFolder, allBelow };

/// What lies in one folder, sorted by the bytes of the names: the order doesn't depend on the disk.
struct FolderContents {
    std::vector<std::filesystem::path> files;
    std::vector<std::filesystem::path> folders;
    std::vector<UnreadPlace> unreadable; ///< names of which nothing can be found out
    std::uint64_t links = 0;
};

/// Throws FileFailure when the folder can't be read to its end.
FolderContents contentsOf(const std::filesystem::path &folder);

/// `root` and, with `allBelow`, every folder below it, depth first. Folders that can't be read are
/// logged, noted in `gaps` and not listed. Ends early when the task is cancelled.
std::vector<std::filesystem::path> GetFolderList(const std::filesystem::path &root, Depth depth,
                                                 TaskMonitor &task, FailureLog &log,
                                                 ScanGaps &gaps);

} // namespace nv
