#pragma once

#include "base/TaskMonitor.h"
#include "reports/exports/Export.h"
#include "views/table/UrlTable.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv {

enum class ExportEnd {
    exported,
    cancelled, ///< nothing was written
};

/// Writes the chosen rows and columns of the table to `job.outputFilePath`. With `exportAllRows`
/// the rows on show are taken, otherwise those of `SelectedURLs`; with `exportAllColumns` every
/// column of the table, otherwise those of `SelectedColumns`. `scratch` is an existing folder for
/// temporary files. Throws StorageFailure, and std::runtime_error when no row can be read.
ExportEnd exportRows(Export &job, UrlTable &table, const std::filesystem::path &scratch,
                     TaskMonitor &task);

/// Puts the table's rows with the tick into `SelectedURLs`. Throws the database's errors.
void selectTagged(Export &job, const UrlTable &table, SQLite::Database &project);

/// What the examiner has to know of a file that was written, a sentence each.
std::vector<std::string> notesOf(const Export &job);

} // namespace nv
