#pragma once

#include "base/Clock.h"
#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/hashes/HashLookup.h"
#include "db/records/RecordStore.h"
#include "import/ImportSettings.h"
#include "import/ImportSummary.h"
#include "import/OpenedFiles.h"
#include "readers/Evidence.h"
#include "readers/Registry.h"

#include <filesystem>

namespace nv {

/// All that a run needs; everything must outlive it.
struct ImportRun {
    SQLite::Database &project;
    ProjectZone zone;
    const Evidence &evidence; ///< made with the project's base folder
    const Clock &clock;
    FailureLog &log;
    TaskMonitor &task;
    /// An existing folder of the program's own. What the import makes there is removed.
    std::filesystem::path scratch;
    /// Tests put readers of their own here.
    const Reader *(*readerFor)(HistoryFileType) = nv::readerFor;
    /// In which all content is looked for; none hashes and looks for nothing more than it must.
    HashLookup *hashSets = nullptr;
    /// Notes what `evidence` opens, so that files beside the artefacts are hashed too.
    OpenedFiles *opened = nullptr;
};

/// Reads the files of `job` into the project, in their order. One file's failure is its own: the
/// next one runs. A cancel keeps the rows saved so far and leaves the remaining files unread. A
/// failure of the project itself, such as a full disk, ends the import and stands in the summary.
/// With `cancelImport` set the list is emptied and nothing is read.
[[nodiscard]] ImportSummary runImport(const ImportRun &run, ImportSettings &job);

} // namespace nv
