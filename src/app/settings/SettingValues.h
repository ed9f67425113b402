#pragma once

#include <filesystem>
#include <string>

namespace nv {

/// The values of settings that are in force, or stand in the Options dialog. What each begins with
/// stands in its row of app/settings/SettingRows.h and nowhere else: members stand at the zero of
/// their type until they are filled from there.
struct SettingValues {
    // Paths
    std::filesystem::path templatesPath;
    std::filesystem::path publishTempFolder;
    std::filesystem::path localFavoritesPath;
    std::filesystem::path sharedFavoritesPath;
    std::filesystem::path agencyLogoPath;

    // Gallery
    int galleryRecordsPerPage = 0;
    bool galleryIncludeHTML = false;
    bool galleryIncludePictures = false;

    // Thumbnails
    int viewerThumbnailWidth = 0;   ///< pixels
    int reportThumbnailWidth = 0;   ///< pixels; Options only: reports look for their own
    int thumbnailRedrawTimeout = 0; ///< seconds
    bool redrawThumbIfPageRebuilt = false;
    bool disableAutoRebuildInHTMLGallery = false;

    // Formats
    std::string dateFormat;
    std::string timeFormat;

    // Rebuild behaviour
    std::string htmlReplaceableHREFTags;
    std::string htmlReplaceablePictureTags;
    bool disableScriptTags = false;    ///< not kept between runs
    bool templateMatchByTitle = false; ///< a template is laid over pages of its title only
    /// Record ids above 32,767 may be parts of rebuilt pages; otherwise the limit of earlier
    /// builds.
    bool wideRecordIds = false;
    std::string rebuildMethod; ///< "auto", "classic" or "exact"

    // Task control
    int progressBarRefreshRate = 0; ///< seconds

    // Import: what the wizard begins with
    bool verifyFileSignatures = false;
    bool parseAdvancedMetadata = false;
    bool thumbnailsWhileImporting = false;
    bool classicOnly = false; ///< only the files and rows of the classic rules
    bool disableFileVersionCheck = false;

    // Network
    std::string networkConnectionName;
    bool connectionOffline = false;

    // Debug
    bool debugMain = false;

    /// Options only: it writes the settings that otherwise hold until the program ends.
    bool keepAllOptions = false;
};

} // namespace nv
