#include "import/FolderList.h"

#include "base/Files.h"
#include "base/Trap.h"

#include <algorithm>

namespace nv {

namespace fs = std::filesystem;

namespace {

void sortByBytes(std::vector<fs::path> &paths) {
    std::ranges::sort(paths, {},
                      [](const fs::path &path) -> const std::string & { return path.native(); });
}

void addEntry(FolderContents &contents, const fs::directory_entry &entry) {
    std::error_code failed;
    const fs::file_status status = entry.symlink_status(failed);
    // In a folder that may be listed and not entered every name is there and nothing behind it.
    if (status.type() == fs::file_type::none)
        contents.unreadable.push_back(
            {entry.path(), FileFailure("cannot open", entry.path(), failed.value()).what()});
    else if (fs::is_symlink(status))
        ++contents.links;
    else if (fs::is_directory(status))
        contents.folders.push_back(entry.path());
    else if (fs::is_regular_file(status))
        contents.files.push_back(entry.path());
}

void showFolder(TaskMonitor &task, const fs::path &folder) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = "Scanning: " + textOf(folder);
    task.show(step);
}

} // namespace

FolderContents contentsOf(const fs::path &folder) {
    FolderContents contents;
    std::error_code failed;
    for (fs::directory_iterator it(folder, failed), end; !failed && it != end; it.increment(failed))
        addEntry(contents, *it);
    if (failed)
        throw FileFailure("cannot list", folder, failed.value());
    sortByBytes(contents.files);
    sortByBytes(contents.folders);
    return contents;
}

std::vector<fs::path> GetFolderList(const fs::path &root, Depth depth, TaskMonitor &task,
                                    FailureLog &log, ScanGaps &gaps) {
    if (depth == Depth::thisFolder)
        return {root};
    std::vector<fs::path> list;
    std::vector<fs::path> waiting{root}; // the next folder is the last one
    while (!waiting.empty() && task.advance(0)) {
        const fs::path folder = std::move(waiting.back());
        waiting.pop_back();
        showFolder(task, folder);
        FolderContents contents;
        const auto failure =
            failureOf(log, "ImportForm.GetFolderList()", [&] { contents = contentsOf(folder); });
        if (failure) {
            gaps.unreadable.push_back({folder, *failure});
            continue;
        }
        waiting.insert(waiting.end(), contents.folders.rbegin(), contents.folders.rend());
        list.push_back(folder);
    }
    return list;
}

} // namespace nv
