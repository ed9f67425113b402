#pragma once

#include "import/HistoryFiles.h"
#include "import/ScanGaps.h"

#include <span>
#include <string>
#include <string_view>

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

    bool IncludeCacheIE = true;
    bool IncludeCacheFirefox = true;
    bool IncludeCacheChrome = true;
    bool IncludeCacheSafari = true;
    bool IncludeCacheOpera = true;
    bool IncludeHistoryIE = true;
    bool IncludeHistoryFirefox = true;
    bool IncludeHistoryChrome = true;
    bool IncludeHistorySafari = true;
    bool IncludeHistoryOpera = true;
    bool IncludeCookiesIE = true;
    bool IncludeCookiesFirefox = true;
    bool IncludeCookiesChrome = true;
    bool IncludeCookiesSafari = true;
    bool IncludeCookiesOpera = true;
    bool IncludeNVD = true;
    bool IncludeHistEx = true;
    bool IncludeNetAnalysis = true;
    bool IncludeSimpleHTMLFiles = true;

    bool CancelImport = false; ///< the wizard's Cancel was pressed
    nv::HistoryFiles HistoryFiles;
    ScanGaps gaps; ///< of the scan that made the list
};

/// A check box of the wizard that decides which artefacts are wanted; `name` is the word of
/// Reader::option.
struct ImportOption {
    std::string_view name;
    bool ImportClass::*member;
};

/// All of them, in the order in which their masks are joined.
std::span<const ImportOption> importOptions();

/// Whether the check box `option` is on. Throws std::out_of_range for a name that no box has.
bool wants(const ImportClass &job, std::string_view option);

/// The masks of all boxes that are on, joined with ";". Empty when none is.
std::string maskText(const ImportClass &job);

} // namespace nv
