#include "import/UntickedFiles.h"

namespace nv {

void removeFiles(HistoryFiles &files, const FilesByFormat &unticked) {
    if (unticked.empty())
        return;
    HistoryFiles kept;
    for (HistoryFile &file : files)
        if (!unticked.contains({file.fullPath, file.historyFileType}))
            kept.add(std::move(file));
    files = std::move(kept);
}

} // namespace nv
