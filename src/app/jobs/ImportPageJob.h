#pragma once

#include "app/program/Program.h"
#include "views/overview/ImportOverview.h"

#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// Why no summary can be saved there: it is the project, lies in its evidence or is no file that a
/// browser opens as a page. Throws StorageFailure.
std::optional<std::string> refusalOfImportPage(const std::filesystem::path &file,
                                               ProgramState &state);

/// Writes the summary of an import as one HTML file in place of what is there, and notes it in the
/// trail. Throws StorageFailure.
void saveImportPage(Program &program, const ImportOverview &overview,
                    const std::filesystem::path &file);

} // namespace nv
