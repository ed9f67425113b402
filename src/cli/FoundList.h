#pragma once

#include "import/HistoryFiles.h"
#include "import/ScanGaps.h"
#include "views/overview/FoundTree.h"

#include <string>

namespace nv::cli {

class Session;

/// What an import would take, for its listing.
struct FoundList {
    const FoundTree &tree;
    const HistoryFiles &files;
    const ScanGaps &gaps;
};

/// For people: a line for each place, with what it lies in told by the space before it.
void writeFound(Session &session, const FoundList &list);

/// For programs: the same tree, with the files of each kind. Bytes that are no UTF-8 are replaced.
std::string foundJson(const FoundList &list);

} // namespace nv::cli
