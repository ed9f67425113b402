#pragma once

#include "app/Program.h"
#include "import/ImportSummary.h"

#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// Reads the files of the program's import job into the open project, and makes the table's first
/// view of the new rows quick. `scratch` is an existing folder of the program's own.
/// Throws StorageFailure when the zones aren't known.
[[nodiscard]] ImportSummary runImportJob(Program &program, TaskMonitor &task,
                                         const std::filesystem::path &scratch);

/// The artefact that a file named on the window's command line is: an Internet Explorer index or a
/// Mork history by its contents, a recovered-record file. Nothing for any other.
std::optional<HistoryFile> artefactOfCommandLine(const std::filesystem::path &path);

} // namespace nv
