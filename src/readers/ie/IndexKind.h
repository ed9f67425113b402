#pragma once

#include "base/ByteView.h"
#include "db/records/HistoryFile.h"
#include "readers/ie/HashChain.h"

#include <string>
#include <vector>

namespace nv {

/// The cache folders of an index by their number in its records.
using FolderList = std::vector<std::string>;

/// Decides whether an index is cache, main, daily or weekly history, and sets the file's type and,
/// for these, its version. Returns the folders of a cache index; a history has none.
FolderList settleIndexKind(HistoryFile &file, ByteView bytes, const HashChain &chain);

} // namespace nv
