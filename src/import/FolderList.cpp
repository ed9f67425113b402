#include "import/FolderList.h"

#include "base/Files.h"
#include "base/Trap.h"

#include <cstdint>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

void showFolder(TaskMonitor &task, const fs::path &folder, std::size_t files) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = "Scanning: " + textOf(folder);
    step.bottomCounter = static_cast<std::int64_t>(files);
    task.show(step);
}

} // namespace

std::vector<fs::path> getFolderList(const Evidence &evidence, const fs::path &root, Depth depth,
                                    TaskMonitor &task, FailureLog &log, ScanGaps &gaps) {
    if (depth == Depth::thisFolder)
        return {root};
    std::vector<fs::path> list;
    std::vector<fs::path> waiting{root}; // the next folder is the last one
    std::size_t files = 0;
    while (!waiting.empty() && task.advance(0)) {
        const fs::path folder = std::move(waiting.back());
        waiting.pop_back();
        showFolder(task, folder, files);
        FolderContents contents;
        const auto failure = failureOf(log, "ImportForm.GetFolderList()",
                                       [&] { contents = evidence.contentsOf(folder); });
        if (failure) {
            gaps.unreadable.push_back({folder, *failure});
            continue;
        }
        files += contents.files.size();
        waiting.insert(waiting.end(), contents.folders.rbegin(), contents.folders.rend());
        list.push_back(folder);
    }
    return list;
}

} // namespace nv
