#pragma once

#include "import/AskedKinds.h"
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
struct ImportSettings {
    std::string startingDirectory; ///< root of the scan: a folder, or one artefact file
    bool recurseSubfolders = true;
    bool verifyFileSignatures = true; ///< recognise files by content, not by name alone
    bool parseAdvancedMetadata = true;
    bool classicOnly = false; ///< only the files and rows of the classic rules
    bool secrets = false;     ///< store saved passwords where they can be read
    bool hashSets = false;    ///< hash all cached content and look for it in the hash sets
    AskedKinds asked;         ///< what else is left out
    bool makeThumbnails = true;
    bool makePictureThumbnails = true;
    bool makeWebPageThumbnails = true;

    bool cancelImport = false; ///< the wizard's Cancel was pressed
    nv::HistoryFiles historyFiles;
    ScanGaps gaps; ///< of the scan that made the list

    /// The check boxes that are off.
    std::set<const SourceOption *> unwanted;
};

/// The check boxes of all formats, in the order in which their masks are joined.
std::vector<const SourceOption *> importOptions(Formats formats = registry());

bool wants(const ImportSettings &job, const SourceOption &option);
void setWanted(ImportSettings &job, const SourceOption &option, bool wanted);

/// False for a format that isn't one of the classic rules, when those alone are wanted.
bool goesByRulesOf(const ImportSettings &job, const Reader &reader);

/// The masks of all boxes that are on, joined with ";". Empty when none is.
std::string maskText(const ImportSettings &job, Formats formats = registry());

} // namespace nv
