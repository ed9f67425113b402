#pragma once

#include "base/KeyedList.h"
#include "db/records/HistoryFile.h"

namespace nv {

/// The artefacts of an import, in the order of the scan, without keys: the same file in two folders
/// stands here twice.
using HistoryFiles = KeyedList<HistoryFile>;

} // namespace nv
