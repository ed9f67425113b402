#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "import/HistoryFiles.h"
#include "import/Scan.h"
#include "views/limits/PlaceLimit.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace nv {

/// A place of the evidence and what a scan found in it. The value of a kind is Reader::kind.
struct FoundNode {
    PlaceTerm term;
    std::string reader;      ///< of a kind: its key
    std::size_t files = 0;   ///< folders that are read as one count as one
    std::size_t notRead = 0; ///< those of them that no import reads yet
    std::uint64_t bytes = 0; ///< of all of them
    std::vector<FoundNode> children = {};
    /// Of a kind: the places of its files in the list, from 0.
    std::vector<std::size_t> artefacts = {};
};

/// What an import of some files would take, before it begins: folder, person, browser, profile,
/// kind; by name, but kinds in the order of their groups. Who and which browser is asked as the
/// import asks. A level of which nothing is known is left out.
struct FoundTree {
    std::vector<FoundNode> evidence;
    std::size_t files = 0;
    std::size_t notRead = 0;
    std::uint64_t bytes = 0;
};

/// Groups the files by the places that their scan began at: the folder of a file that was named
/// itself is its place. Settings beside the files are read; what can't be is told to `log` and
/// tells nothing. A cancel leaves the tree empty.
[[nodiscard]] Walk groupFound(const HistoryFiles &files, const std::vector<ScannedPlace> &places,
                              TaskMonitor &task, FailureLog &log, FoundTree &tree);

} // namespace nv
