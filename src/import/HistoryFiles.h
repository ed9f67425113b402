#pragma once

#include "base/KeyedList.h"
#include "db/HistoryFile.h"

#include <filesystem>

namespace nv {

/// The artefacts of an import, in the order of the scan, without keys: the same file in two folders
/// stands here twice.
using HistoryFiles = KeyedList<HistoryFile>;

/// Takes the file of a row that the examiner unticked off the list; as what another format finds in
/// it, it stays.
void removeFile(HistoryFiles &files, const std::filesystem::path &path, HistoryFileType type);

} // namespace nv
