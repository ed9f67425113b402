#pragma once

#include "base/FailureLog.h"
#include "import/HistoryFiles.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv {

/// A time zone that a file of the evidence names. It is that of the machine, or the profile, when
/// the file was last written; nothing says that it was so at each event.
struct ZoneHint {
    std::string zone; ///< as the file has it: "Europe/Berlin"
    std::filesystem::path file;
};

/// What the evidence below `start`, with the artefacts that were found there, says of its zone. The
/// surest comes first, a zone once. Files are only looked at, and no link of the evidence is
/// followed; one that can't be read is no hint and is logged. A further kind of file that knows its
/// zone is a further row of the list in the source.
std::vector<ZoneHint> zoneHints(const std::filesystem::path &start, const HistoryFiles &files,
                                FailureLog &log);

} // namespace nv
