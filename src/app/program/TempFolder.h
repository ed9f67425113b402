#pragma once

#include <filesystem>

namespace nv {

/// The fixed names of scratch files in the folder of a process. The last three are pages of the
/// program's own with fixed text.
struct TempFileNames {
    std::filesystem::path scratch;    ///< "~tmp"
    std::filesystem::path blob;       ///< "~blob"
    std::filesystem::path badUrl;     ///< "~badurl.htm": why nothing can be shown
    std::filesystem::path badReport;  ///< "~badreport.htm": how to make a report
    std::filesystem::path pleaseWait; ///< "~pleasewait.htm"
    std::filesystem::path project;    ///< "~cmdtemp.nvp": the scratch project of the command line
};
TempFileNames tempFileNames(const std::filesystem::path &scratchFolder);

/// Throws FileFailure.
void writeScratchPages(const TempFileNames &names);

} // namespace nv
