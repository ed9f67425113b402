#pragma once

#include <filesystem>
#include <string>

namespace nv {

/// The values of settings that are in force, or stand in the Options dialog. What each begins with
/// stands in its row of app/SettingRows.h and nowhere else: members stand at the zero of their type
/// until they are filled from there.
struct SettingValues {
    // Paths
    std::filesystem::path TemplatesPath;
    std::filesystem::path PublishTempFolder;
    std::filesystem::path LocalFavoritesPath;
    std::filesystem::path SharedFavoritesPath;
    std::filesystem::path AgencyLogoPath;

    // Gallery
    int GalleryRecordsPerPage = 0;
    bool GalleryIncludeHTML = false;
    bool GalleryIncludePictures = false;

    // Thumbnails
    int ViewerThumbnailWidth = 0;   ///< pixels
    int ReportThumbnailWidth = 0;   ///< pixels; Options only: reports look for their own
    int ThumbnailRedrawTimeout = 0; ///< seconds
    bool RedrawThumbIfPageRebuilt = false;
    bool DisableAutoRebuildInHTMLGallery = false;

    // Formats
    std::string DateFormat;
    std::string TimeFormat;

    // Rebuild behaviour
    std::string HTMLReplaceableHREFTags;
    std::string HTMLReplaceablePictureTags;
    bool DisableScriptTags = false;    ///< not kept between runs
    bool TemplateMatchByTitle = false; ///< a template is laid over pages of its title only
    /// Record ids above 32,767 may be parts of rebuilt pages; otherwise the limit of earlier
    /// builds.
    bool WideRecordIds = false;

    // Task control
    int ProgressBarRefreshRate = 0; ///< seconds

    // Import: what the wizard begins with
    bool VerifyFileSignatures = false;
    bool ParseAdvancedMetadata = false;
    bool ThumbnailsWhileImporting = false;
    bool DisableFileVersionCheck = false;

    // Network
    std::string NetworkConnectionName;
    bool ConnectionOffline = false;

    // Debug
    bool DebugMain = false;

    /// Options only: it writes the settings that otherwise hold until the program ends.
    bool KeepAllOptions = false;
};

} // namespace nv
