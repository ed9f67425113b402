#pragma once

#include "base/FailureLog.h"
#include "import/Scan.h"

#include <string>
#include <vector>

namespace nv::cli {

class Session;

/// Takes the paths away of which nothing can be found out, as of those in a folder that may not be
/// entered: the others are imported.
ScanGaps takeUnreachable(std::vector<std::string> &paths, FailureLog &log);

/// Looks for artefacts in all paths, or takes each as that of the reader with the key `as`, and
/// puts the files and the gaps into the import's job; `gaps` are known before. A file that is none
/// is told.
ScanResult findArtefacts(Session &session, const std::vector<std::string> &paths,
                         const std::string &as, const ScanGaps &gaps);

} // namespace nv::cli
