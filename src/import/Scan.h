#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "import/ImportSettings.h"
#include "readers/Reader.h"

#include <cstddef>
#include <filesystem>

namespace nv {

struct ScanResult {
    nv::HistoryFiles
        historyFiles; ///< with MD5, size, type and version; what was found so far when cancelled
    ScanGaps gaps;
    std::size_t notAsked = 0; ///< artefacts that ImportSettings::asked leaves out
    bool cancelled = false;
};

/// Looks for artefacts in the starting directory, or at that one file when it is a file: then no
/// mask is applied. A file whose format's check box is off is passed over; one that several formats
/// take is listed once for each. The hash of a folder that is an artefact is that of the names and
/// bytes of its files, hashesOfArtefact(). `watch` stands beside all reading, where given.
[[nodiscard]] ScanResult scan(const ImportSettings &job, TaskMonitor &task, FailureLog &log,
                              EvidenceWatch *watch = nullptr, Formats formats = registry());

/// Lists that one file as the format of `reader`, whatever its name and bytes say.
[[nodiscard]] ScanResult listAs(const Reader &reader, const std::filesystem::path &file,
                                TaskMonitor &task, FailureLog &log);

} // namespace nv
