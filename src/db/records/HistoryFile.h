#pragma once

#include "db/schema/Ids.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace nv {

/// The number that selects a reader. Projects and scripts of examiners know these numbers.
enum class HistoryFileType : std::int16_t {
    none = 0,
    ieHistory = 1,
    ieDaily = 2,
    ieWeekly = 3,
    ieCache = 4,
    ieCookies = 5,
    ieIndexByCommandLine = 6,
    morkHistory = 7,
    firefoxCache = 8,
    macIECache = 10,
    netAnalysis = 12,
    norvelaneNVD = 13,
    importedBinary = 13, ///< what a recovered-record reader calls the same number
    csv = 15,
    operaCache = 16,
    operaHistory = 17,
    safariCache = 18,
    safariHistory = 19,
    chromeCache = 20,
    chromeHistory = 21,
    firefox3History = 22,
    firefoxCacheByName = 23,
    histEx = 24,
    simpleHTML = 25,
    histExIndex = 26,
    operaCookies = 27,
    safariCookies = 28,
    firefoxCookies = 29,
    chromeCookies = 30,

    // Beyond the classic rules.
    chromiumHistory = 31, ///< known by its tables
    chromiumCookies = 32,
    chromiumWebData = 33,
    chromiumLogins = 34,
    chromiumBookmarks = 35,
    chromiumFavicons = 36,
    chromiumTopSites = 37,
    chromiumShortcuts = 38,
    chromiumPredictor = 39,
    chromiumPreferences = 40,
    chromiumLocalState = 41,
    firefoxForms = 50,
    firefoxPermissions = 51,
    firefoxLogins = 52,
    firefoxFavicons = 53,
    firefoxDownloads = 54, ///< up to version 20
    firefoxBookmarkBackup = 55,
};

/// Whose artefact it is, as its place and what lies beside it say. Empty is unknown. A reader adds
/// what only its reading tells: a version where there is none, and a device.
struct Origin {
    std::string browser;
    std::string browserVersion; ///< of the program, or else of the file's schema
    std::string profile;        ///< the profile's folder
    std::string person;         ///< the account's folder
    std::string device;         ///< another device, when all of it came from there by sync

    friend bool operator==(const Origin &, const Origin &) = default;
};

/// One artefact file of an import; a row of `SourceFiles` once logFile has registered it.
struct HistoryFile {
    SourceFileId sourceFileID = SourceFileId::none;
    std::string fileName;
    std::string fileExt; ///< lower-case, without the point
    std::uint64_t fileSize = 0;
    std::string fileParentPath; ///< the folder that holds the file, without a closing separator
    std::filesystem::path fullPath;
    std::string md5Hash;    ///< of the whole file, lower-case hexadecimal
    std::string sha256Hash; ///< the same
    nv::HistoryFileType historyFileType = nv::HistoryFileType::none;
    std::string version;
    nv::Origin origin;
};

} // namespace nv
