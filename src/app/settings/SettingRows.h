#pragma once

#include "app/settings/SettingFacts.h"
#include "rebuild/ReplaceableTags.h"
#include "reports/report/ReportTitle.h"
#include "time/DateFormat.h"

#include <array>

namespace nv::setting {

using K = SettingKind;
using V = SettingValues;

inline constexpr int kMost = 32767; // what earlier builds could hold

/// All settings, by section. Start-up, the Options dialog, the commands `options get` and `options
/// set` and the guide's list read this one; see docs/adding-a-setting.md.
inline constexpr auto kAll = std::to_array<SettingFacts>({
    flag("OPTIONS", "DebugMain", false, "A message at the start of the program")
        .keptIn(&V::debugMain),
    text("OPTIONS", "OstermoorEXEPath", "<program>/Ostermoor.exe", "The companion tool", K::file),
    flag("OPTIONS", "ParseAdvancedMetaData", true,
         "Imports read title, text and links of cached pages")
        .keptIn(&V::parseAdvancedMetadata),
    flag("OPTIONS", "DisableAutoRebuildInHTMLGallery", false,
         "A tile of the gallery doesn't bring its rebuilt page back")
        .keptIn(&V::disableAutoRebuildInHTMLGallery),
    flag("OPTIONS", "DisableFileVersionCheck", false,
         "Projects of earlier builds open without a question")
        .keptIn(&V::disableFileVersionCheck)
        .held()
        .shownAs("chkDisableVersionChecking", "Disable version &checking",
                 "Projects of earlier builds open without a question, until the program ends."),
    text("OPTIONS", "LocalFavoritesPath", "<home>/favorites.ini", "The examiner's favourites")
        .keptIn(&V::localFavoritesPath),
    text("OPTIONS", "SharedFavoritesPath", "", "Favourites shared with others")
        .keptIn(&V::sharedFavoritesPath),
    text("OPTIONS", "NetworkConnectionName", "Local Area Connection",
         "The connection that the network switch takes down")
        .keptIn(&V::networkConnectionName)
        .held(),
    // What Options offers differs from what a start takes, for both formats and the time-out of
    // drawing: as examiners know it. An emptied date format is a third one.
    text("OPTIONS", "DateFormat", kDateFormat, "How dates are shown")
        .keptIn(&V::dateFormat)
        .offeredAs("YYYY-MM-DD")
        .emptiedTo("MM/DD/YY")
        .written(),
    text("OPTIONS", "TimeFormat", kTimeFormat, "How times are shown")
        .keptIn(&V::timeFormat)
        .offeredAs("24:00:00")
        .written(),
    flag("OPTIONS", "GalleryIncludeHTML", true, "The gallery shows web pages")
        .keptIn(&V::galleryIncludeHTML)
        .shownAs("chkIncludeHTML", "Include &web pages", "The gallery shows cached web pages."),
    flag("OPTIONS", "GalleryIncludePictures", true, "The gallery shows pictures")
        .keptIn(&V::galleryIncludePictures)
        .shownAs("chkIncludePictures", "Include &pictures", "The gallery shows cached pictures."),
    number("OPTIONS", "GalleryRecordsPerPage", 1, kMost, "300",
           "Thumbnails on a page of the gallery")
        .keptIn(&V::galleryRecordsPerPage)
        .held(),
    number("OPTIONS", "ProgressBarRefreshRate", 0, 3600, "5",
           "Seconds between two changes of the status window")
        .keptIn(&V::progressBarRefreshRate)
        .written(),
    flag("OPTIONS", "VerifyFileSignatures", true,
         "Files are recognised by content, not by name alone")
        .keptIn(&V::verifyFileSignatures)
        .shownAs("chkVerifyFileContents", "&Verify file contents",
                 "Files are recognised by their content, not by name alone."),
    flag("OPTIONS", "RedrawThumbIfPageRebuilt", true, "A rebuilt page gets a new thumbnail")
        .keptIn(&V::redrawThumbIfPageRebuilt)
        .shownAs("chkRedrawHTMLThumbnails", "&Redraw thumbnails",
                 "A page that is rebuilt gets a new thumbnail."),
    flag("OPTIONS", "ShowTipsAtStartup", true, "The tip of the day at the start"),
    flag("OPTIONS", "DisableScriptTags", false,
         "Scripts of rebuilt pages become comments; written by Options, not read at the start")
        .keptIn(&V::disableScriptTags, SettingRead::never)
        .shownAs("chkDisableScripts", "Disable &scripts",
                 "Scripts of pages become comments when they are rebuilt."),
    text("OPTIONS", "TimeZoneBias", "", "The zone last chosen in Options"),
    text("OPTIONS", "TimeZoneName", "", "The zone last chosen in Options"),
    text("OPTIONS", "TimeZoneID", "", "The zone last chosen in Options", K::zone),
    // Not the one of the start, which stands in a section of its own.
    number("OPTIONS", "ThumbnailRedrawTimeout", 1, 600, "15",
           "Seconds for drawing a page, as Options offers it")
        .keptIn(&V::thumbnailRedrawTimeout, SettingRead::inOptions)
        .held(),
    number("THUMBNAILS", "ViewerThumbnailWidth", 100, kMost, "120",
           "Pixels of the gallery's thumbnails")
        .mendedTo(160)
        .keptIn(&V::viewerThumbnailWidth)
        .written(),
    number("THUMBNAILS", "ThumbnailRedrawTimeout", 1, 600, "5",
           "Seconds for drawing a page, from the start on")
        .mendedTo(15)
        .keptIn(&V::thumbnailRedrawTimeout)
        .held(),
    number("THUMBNAILS", "ReportThumbnailWidth", 1, kMost, "200",
           "Pixels of the thumbnails of reports")
        .keptIn(&V::reportThumbnailWidth, SettingRead::inOptions)
        .written(),
    text("FILE PATHS", "AgencyLogoPath", "", "The picture at the head of reports", K::file)
        .keptIn(&V::agencyLogoPath)
        .written(),
    text("FILE PATHS", "PublishFolder", "", "The folder that is offered for publishing reports",
         K::folder)
        .keptIn(&V::publishTempFolder)
        .written(),
    text("FILE PATHS", "TempFolder", "", "The Temp folder last chosen in Options", K::folder),
    text("FILE PATHS", "LastProjectDBPath", "",
         "The project that was open when Options was confirmed"),
    text("FILE PATHS", "AgencyLogo", "", "The logo that Options offers while there is none",
         K::file),
    text("FILE PATHS", "Project", "", "The folder that Options offers for new projects", K::folder),
    text("FILE PATHS", "Publish", "", "The publish folder that Options offers while there is none",
         K::folder),
    text("FILE PATHS", "Temp", "", "The Temp folder that Options offers while there is none",
         K::tempFolder),
    text("DEFAULT", "TempFolderPath", "<state>/Temp",
         "The Temp folder from the start on; each run works in a folder of its own in there",
         K::tempFolder),
    flag("DEFAULT", "ConnectionOffline", true, "The connection is taken to be down at the start")
        .keptIn(&V::connectionOffline),
    text("DEFAULT", "HTMLReplaceableHREFTags", kHTMLReplaceableHREFTags,
         "Kinds of links that a rebuild replaces")
        .keptIn(&V::htmlReplaceableHREFTags),
    text("DEFAULT", "HTMLReplaceablePictureTags", kHTMLReplaceablePictureTags,
         "Kinds of pictures that a rebuild replaces")
        .keptIn(&V::htmlReplaceablePictureTags),
    text("FILES", "File1", "", "The project opened last; the File menu lists it"),
    text("FILES", "File2", "", "A project of the File menu"),
    text("FILES", "File3", "", "A project of the File menu"),
    text("FILES", "File4", "", "A project of the File menu"),
    text("FILES", "File5", "", "A project of the File menu, written by hand only"),
    text("FILES", "File6", "", "A project of the File menu, written by hand only"),
    text("REPORT", "CaseNumber", "", "Case number of reports"),
    text("REPORT", "ReportedBy", "", "Author of reports"),
    text("REPORT", "Organization", "", "Organization of reports"),
    text("REPORT", "DefaultThumbnailPath", "", "The picture of rows without a thumbnail", K::file),
    text("REPORT", "ReportTitle", kDefaultReportTitle, "Title of reports"),
    number("REPORT", "ReportType", 0, 9, "0", "The kind of report made last"),
    flag("REPORT", "UseDefaultThumbnailPath", false,
         "The report window's box at that picture when it was last confirmed"),
    flag("REPORT", "UseCustomLogo", false, "Reports show the agency's logo"),
    flag("REPORT", "IncludeAudit", false, "Reports hold what rebuilds replaced"),
    flag("REPORT", "IncludeLinkAnalysis", false, "Reports hold the link analysis"),
    flag("REPORT", "IncludeNotes", true, "Reports hold the examiner's notes"),
    flag("REPORT", "IncludeTimeRebuilt", true, "Reports tell when a page was rebuilt"),
    flag("REPORT", "IncludeDataSource", true, "Reports tell the file of each record"),
    flag("REPORT", "IncludeUser", true, "Reports tell the user of each record"),
    flag("REPORT", "IncludeCaseTrail", false, "Reports hold the case trail"),
    flag("REPORT", "IncludeOrigins", false,
         "Reports tell where the values of rows with the tick come from"),
    flag("BEYOND", "WideRecordIds", true,
         "Record ids above 32767 may be parts of rebuilt pages, which earlier builds "
         "can't open; False is their limit")
        .keptIn(&V::wideRecordIds)
        .shownAs("chkWideRecordIds", "&Wide record ids",
                 "Records with ids above 32767 may be parts of rebuilt pages, which earlier "
                 "versions then can't open."),
    choice("BEYOND", "RebuildMethod", "auto;classic;exact", "auto",
           "How pages are rebuilt; auto: those of the caches of today's browsers exactly, all "
           "others by the classic rules")
        .keptIn(&V::rebuildMethod)
        .shownAs("cbRebuildMethod", "Re&build pages:",
                 "auto rebuilds pages of today's caches exactly, all others by the classic rules."),
    // Some seven pages a second would make an import of a large cache a matter of hours; the
    // gallery's button draws them when they are wanted.
    flag("BEYOND", "ThumbnailsWhileImporting", false,
         "Imports draw thumbnails, which takes much longer")
        .keptIn(&V::thumbnailsWhileImporting)
        .shownAs("chkThumbnailsWhileImporting", "&Thumbnails while importing",
                 "Imports draw all pictures and pages, which takes much longer."),
    flag("BEYOND", "ClassicOnly", false,
         "Imports take only the files and rows of the classic rules, those of the first version")
        .keptIn(&V::classicOnly)
        .shownAs("chkClassicOnly", "&Classic rules alone",
                 "Imports take only the files and rows that the first version took."),
    flag("BEYOND", "HashSetsWhileImporting", false,
         "The import wizard hashes all cached content and looks for it in the hash sets"),
    flag("BEYOND", "TemplateMatchByTitle", true, "A template is laid only over pages of its title")
        .keptIn(&V::templateMatchByTitle)
        .shownAs("chkTemplateMatchByTitle", "Templates match by t&itle",
                 "A template is laid only over pages of its own title."),
    text("BEYOND", "TemplatesPath", "<home>/Templates", "The folder of templates")
        .keptIn(&V::templatesPath)
        .written(),
    flag("BEYOND", "KeepAllOptions", false,
         "Options also writes what otherwise holds until the program ends")
        .keptIn(&V::keepAllOptions, SettingRead::inOptions)
        .shownAs("chkKeepAllOptions", "&Keep all options",
                 "What otherwise holds until the program ends (gallery numbers, version "
                 "checking, network connection) is kept for the next start."),
    flag("BEYOND", "ShowHosts", false, "The list of hosts stands beside the table"),
    flag("BEYOND", "ShowTags", false, "The list of tags stands beside the table"),
    flag("BEYOND", "ShowTime", false, "The bar of time stands above the table"),
    flag("BEYOND", "ShowPlaces", true, "The tree of places stands beside the table"),
    flag("BEYOND", "ShowViewers", true, "The viewers stand below the table"),
    flag("BEYOND", "PinViewer", false,
         "The viewer in front stays there; otherwise the one that fits the record comes up"),
    flag("BEYOND", "HasStarted", false,
         "A window was started before: tips come from the second start on"),
    choice("BEYOND", "Theme", "System;Light;Dark", "System",
           "Colours of the windows: System, Light or Dark"),
});

} // namespace nv::setting
