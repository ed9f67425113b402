#include "app/ImportJob.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "import/ImportRun.h"
#include "views/DateIndex.h"

#include <algorithm>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// True when the bytes stand anywhere in the file, also across the border of two blocks.
bool fileHolds(const fs::path &file, std::string_view bytes) {
    std::string window;
    bool found = false;
    readInBlocks(file, [&](std::string_view block, std::uint64_t) {
        window.append(block);
        found = window.find(bytes) != std::string::npos;
        window.erase(0, window.size() - std::min(window.size(), bytes.size() - 1));
        return !found;
    });
    return found;
}

HistoryFileType typeOfCommandLine(const fs::path &file) {
    const std::string extension = toLower(textOf(file.extension()));
    if (extension == ".dat" && fileHolds(file, "Client UrlCache"))
        return HistoryFileType::ieIndexByCommandLine;
    if (extension == ".dat" && fileHolds(file, "<mdb:mork:z"))
        return HistoryFileType::morkHistory;
    if (extension == ".hst" && fileHolds(file, "http"))
        return HistoryFileType::ieIndexByCommandLine;
    return HistoryFileType::none;
}

} // namespace

ImportSummary runImportJob(Program &program, TaskMonitor &task, const fs::path &scratch) {
    ThisClass &state = program.thisClass;
    SQLite::Database &project = state.ProjectDB.connection();
    const Evidence evidence(state.RootPath);
    const ImportRun run{project,     {state.GMTZone, state.EnableDSTChanges},
                        evidence,    program.around.clock,
                        program.log, task,
                        scratch};
    ImportSummary summary = runImport(run, program.import);
    if (!summary.cancelled && summary.failure.empty())
        ensureDateIndex(project, task);
    return summary;
}

std::optional<HistoryFile> artefactOfCommandLine(const fs::path &path) {
    HistoryFile file;
    file.HistoryFileType = typeOfCommandLine(path);
    if (file.HistoryFileType == HistoryFileType::none)
        return std::nullopt;
    file.FullPath = fs::absolute(path);
    file.FileName = textOf(path.filename());
    file.FileParentPath = textOf(file.FullPath.parent_path());
    file.fileExt = toLower(textOf(path.extension())).substr(1);
    file.FileSize = fs::file_size(path);
    file.MD5Hash = FileMD5(path).value_or("");
    return file;
}

} // namespace nv
