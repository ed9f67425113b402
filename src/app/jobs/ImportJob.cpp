#include "app/jobs/ImportJob.h"

#include "app/jobs/HashSetJob.h"
#include "app/jobs/ThumbnailJob.h"
#include "app/jobs/Trail.h"
#include "app/messages/Messages.h"
#include "app/project/Project.h"
#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/SqliteErrors.h"
#include "import/ImportRun.h"
#include "views/limits/MovedEvidence.h"
#include "views/rows/DateIndex.h"
#include "views/rows/NarrowIndex.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>

#include <algorithm>
#include <memory>

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

/// How much of the whole the reading takes, and where the preparing after it ends: what is left
/// are thumbnails.
struct Shares {
    double reading = 0;
    double preparing = 0;
};

Shares sharesOf(const ImportSettings &job) {
    return job.makeThumbnails ? Shares{0.55, 0.6} : Shares{0.92, 1};
}

/// What the table would do at its first load: whoever only looks at the project then finds it
/// ready, and needn't write to it.
void prepareTable(Program &program, TaskMonitor &task, Shares shares) {
    SQLite::Database &project = program.state.projectDB.connection();
    const double each = (shares.preparing - shares.reading) / 4;
    SubTask moving(task, shares.reading, shares.reading + each);
    SubTask dates(task, shares.reading + each, shares.reading + 2 * each);
    SubTask narrow(task, shares.reading + 2 * each, shares.reading + 3 * each);
    SubTask links(task, shares.reading + 3 * each, shares.preparing);
    onProject(project, [&] {
        mendRootPath(project, program.log, textOf(program.state.rootPath), moving);
        ensureDateIndex(project, dates);
        ensureNarrowIndexes(project, narrow);
        ensureLinkIndexes(project, links);
    });
}

/// After the reading: the rows are safe by then, whatever drawing comes to.
void makeImportThumbnails(Program &program, TaskMonitor &task, const fs::path &scratch,
                          std::int64_t lastId, ImportSummary &summary) {
    const auto ids = importedDrawableIds(program, lastId);
    if (ids.empty())
        return;
    ThumbnailTotals totals;
    summary.thumbnails.failure = failureOf(program.log, "MainBAS.MakeThumbnail()", [&] {
                                     const ThumbnailTools tools(program, scratch);
                                     makeThumbnails(tools.context(), ids, task, totals);
                                 }).value_or(std::string());
    summary.thumbnails.made = totals.made;
    summary.thumbnails.failed = totals.failed;
    summary.thumbnails.passedOver = totals.withoutContent + totals.otherKinds;
    summary.cancelled = totals.cancelled;
}

/// A file without a row in `SourceFiles` isn't read: nothing could tell where its rows come from.
void tellNotLogged(Program &program, const ImportSummary &summary) {
    const auto isMissing = [](const ArtefactResult &artefact) { return !artefact.isLogged; };
    const auto first = std::ranges::find_if(summary.artefacts, isMissing);
    if (first == summary.artefacts.end())
        return;
    program.around.examiner.tell(messages::loggingFileFailed(
        first->path, first->reason,
        static_cast<std::size_t>(std::ranges::count_if(summary.artefacts, isMissing))));
}

} // namespace

ImportSummary runImportJob(Program &program, TaskMonitor &task, const fs::path &scratch) {
    requireZones(program);
    requireSchema(program);
    ProgramState &state = program.state;
    SQLite::Database &project = state.projectDB.connection();
    OpenedFiles opened;
    const Evidence evidence(state.rootPath, &opened);
    const std::unique_ptr<HashLookup> hashSets = hashSetsForImport(program);
    const Shares shares = sharesOf(program.import);
    SubTask reading(task, 0, shares.reading);
    const ImportRun run{project,        {state.gmtZone, state.enableDSTChanges},
                        evidence,       program.around.clock,
                        program.log,    reading,
                        scratch,        readerFor,
                        hashSets.get(), &opened};
    const std::int64_t lastId = lastRow(program);
    noteImportBegin(program, lastId);
    ImportSummary summary = runImport(run, program.import);
    summary.lastBefore = lastId;
    summary.isNoted = noteImport(program, summary, lastId);
    if (hashSets)
        noteHashSets(program, *hashSets);
    tellNotLogged(program, summary);
    // The rows are in the project by then, and the summary has to tell of them.
    if (!summary.cancelled && summary.failure.empty())
        summary.failure = failureOf(program.log, "ImportForm.ImportFiles()", [&] {
                              prepareTable(program, task, shares);
                          }).value_or(std::string());
    if (!summary.cancelled && summary.failure.empty()) {
        SubTask drawing(task, shares.preparing, 1);
        makeImportThumbnails(program, drawing, scratch, lastId, summary);
    }
    return summary;
}

std::optional<HistoryFile> artefactOfCommandLine(const fs::path &path) {
    HistoryFile file;
    file.historyFileType = typeOfCommandLine(path);
    if (file.historyFileType == HistoryFileType::none)
        return std::nullopt;
    file.fullPath = fs::absolute(path);
    file.fileName = textOf(path.filename());
    file.fileParentPath = textOf(file.fullPath.parent_path());
    file.fileExt = toLower(textOf(path.extension())).substr(1);
    if (const auto hashes = hashesOfFile(path)) {
        file.fileSize = hashes->size;
        file.md5Hash = hashes->md5;
        file.sha256Hash = hashes->sha256;
    }
    return file;
}

} // namespace nv
