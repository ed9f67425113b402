#pragma once

#include "import/HistoryFiles.h"

#include <filesystem>
#include <set>
#include <utility>

namespace nv {

/// Files as one format each.
using FilesByFormat = std::set<std::pair<std::filesystem::path, HistoryFileType>>;

/// Takes those that the examiner unticked off the list; as what another format finds in it, a file
/// stays.
void removeFiles(HistoryFiles &files, const FilesByFormat &unticked);

} // namespace nv
