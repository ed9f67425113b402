#pragma once

#include "import/HistoryFiles.h"
#include "import/ScanGaps.h"
#include "readers/Registry.h"
#include "readers/SourceOption.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The settings of one import job, as the wizard or the command line set them.
struct ImportClass {
    std::string StartingDirectory; ///< root of the scan: a folder, or one artefact file
    bool RecurseSubfolders = true;
    bool VerifyFileSignatures = true; ///< recognise files by content, not by name alone
    bool ParseAdvancedMetadata = true;
    bool MakeThumbnails = true;
    bool MakePictureThumbnails = true;
    bool MakeWebPageThumbnails = true;

    bool CancelImport = false; ///< the wizard's Cancel was pressed
    nv::HistoryFiles HistoryFiles;
    ScanGaps gaps; ///< of the scan that made the list

    /// The check boxes that are off.
    std::set<const SourceOption *> unwanted;
};

/// The check boxes of all formats, in the order in which their masks are joined.
std::vector<const SourceOption *> importOptions(Formats formats = registry());

/// The box of that name. Throws std::out_of_range for a name that no box has.
const SourceOption &importOption(std::string_view name);

bool wants(const ImportClass &job, const SourceOption &option);
void setWanted(ImportClass &job, const SourceOption &option, bool wanted);

/// The masks of all boxes that are on, joined with ";". Empty when none is.
std::string maskText(const ImportClass &job, Formats formats = registry());

} // namespace nv
