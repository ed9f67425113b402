#include "app/ImportJob.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "import/ImportRun.h"
#include "views/DateIndex.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

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

/// Of each kind that is not read yet; a cache may hold thousands of loose pages.
constexpr int kListed = 5;

std::string artefactText(const ArtefactResult &artefact) {
    std::string text =
        fmt::format("{:<12} {:>9} rows  type {:<3} {:<20} {}  {}\n", stateWord(artefact.state),
                    artefact.rowsSaved, static_cast<int>(artefact.type), artefact.readerKey,
                    artefact.MD5Hash, textOf(artefact.path));
    const auto note = [&text](std::string_view what) { text += fmt::format("    {}\n", what); };
    if (!artefact.reason.empty() && artefact.state != ArtefactState::notReadYet)
        note(artefact.reason);
    if (artefact.notReached > 0)
        note(fmt::format("{} entries were not reached", artefact.notReached));
    if (artefact.rowsLost > 0)
        note(fmt::format("{} records could not be saved, see the log", artefact.rowsLost));
    for (const auto &[reason, count] : artefact.passedOver)
        note(fmt::format("{} passed over: {}", count, reason));
    for (const auto &[reason, count] : artefact.noted)
        note(fmt::format("{} noted: {}", count, reason));
    return text;
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

std::string summaryText(const ImportSummary &summary) {
    std::string text;
    std::map<std::string, int> unread;
    for (const ArtefactResult &artefact : summary.artefacts)
        if (artefact.state != ArtefactState::notReadYet || ++unread[artefact.readerKey] <= kListed)
            text += artefactText(artefact);
    for (const auto &[reader, count] : unread)
        if (count > kListed)
            text += fmt::format("{:<12} {} further files of the kind {}\n",
                                stateWord(ArtefactState::notReadYet), count - kListed, reader);
    text +=
        fmt::format("{} rows from {} of {} artefacts; {} entries not reached, {} records passed "
                    "over\n",
                    summary.rowsSaved(), summary.count(ArtefactState::complete),
                    summary.artefacts.size(), summary.notReached(), summary.passedOver());
    for (const auto &[reader, reasons] : summary.passedOverByReader())
        for (const auto &[reason, count] : reasons)
            text += fmt::format("{:<12} {:>9} passed over: {}\n", reader, count, reason);
    if (summary.cancelled)
        text += "The import was cancelled; what was written is kept.\n";
    if (!summary.failure.empty())
        text += fmt::format("The import ended: {}\n", summary.failure);
    return text;
}

} // namespace nv
