#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "import/ImportSettings.h"
#include "readers/Reader.h"

#include <cstddef>
#include <filesystem>
#include <vector>

namespace nv {

/// A folder or file that a scan began at.
struct ScannedPlace {
    std::filesystem::path path; ///< whole, without "." and ".."
    bool isFile = false;
    /// Another place of the scan is a folder above it, and was looked through with all below it.
    bool isWithinAnother = false;
    std::size_t artefacts = 0;  ///< those left out by ImportSettings::asked too
    std::size_t unreadable = 0; ///< gaps that were met there
};

struct ScanResult {
    nv::HistoryFiles
        historyFiles; ///< with MD5, size, type and version; what was found so far when cancelled
    ScanGaps gaps;
    std::size_t notAsked = 0; ///< artefacts that ImportSettings::asked leaves out
    bool cancelled = false;
    std::vector<ScannedPlace> places; ///< in the order in which they were given
};

/// Looks for artefacts in the starting directory, or at that one file when it is a file: then no
/// mask is applied. A file whose format's check box is off is passed over; one that several formats
/// take is listed once for each. The hash of a folder that is an artefact is that of the names and
/// bytes of its files, hashesOfArtefact(). `watch` stands beside all reading, where given.
[[nodiscard]] ScanResult scan(const ImportSettings &job, TaskMonitor &task, FailureLog &log,
                              EvidenceWatch *watch = nullptr, Formats formats = registry());

/// The same at several folders and files, in their order, in place of the starting directory. What
/// lies in several of them is listed once.
[[nodiscard]] ScanResult scanPlaces(const ImportSettings &job,
                                    const std::vector<std::filesystem::path> &places,
                                    TaskMonitor &task, FailureLog &log);

/// Lists that one file as the format of `reader`, whatever its name and bytes say.
[[nodiscard]] ScanResult listAs(const Reader &reader, const std::filesystem::path &file,
                                TaskMonitor &task, FailureLog &log);

} // namespace nv
