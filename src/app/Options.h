#pragma once

#include "app/Program.h"
#include "time/ZoneDatabase.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// The formats that Options offers while the settings have none; those of the start differ, as they
// always have.
inline constexpr std::string_view kOptionsDateFormat = "YYYY-MM-DD";
inline constexpr std::string_view kOptionsTimeFormat = "24:00:00"; ///< means "Hh:Nn:Ss"
inline constexpr std::string_view kDefaultConnection = "Local Area Connection";

/// What stands in the Options dialog.
struct Options {
    // Paths
    std::filesystem::path ProjectDBPath;
    std::filesystem::path RootPath; ///< of a new project: empty is left to its first import
    std::filesystem::path TempFolderPath;
    std::filesystem::path TemplatesPath;
    std::filesystem::path PublishTempFolder;
    std::filesystem::path AgencyLogoPath;
    // Date, time and zone
    std::string DateFormat;
    std::string TimeFormat;
    std::optional<std::int32_t> Time_Zone_ID; ///< a classic zone, the selection of the list
    std::string exactZone;                    ///< an exact one, "Europe/Berlin": goes before it
    bool EnableDSTChanges = true;
    // Gallery
    bool GalleryIncludeHTML = true;
    bool GalleryIncludePictures = true;
    int GalleryRecordsPerPage = 300;
    bool RedrawThumbIfPageRebuilt = true;
    int ThumbnailRedrawTimeout = 15; ///< seconds
    bool EnablePARD = false;
    int PARDFrom = 0; ///< percent
    int PARDTo = 0;
    // Thumbnails, in pixels
    int ViewerThumbnailWidth = 120;
    int ReportThumbnailWidth = 200;
    // Safety
    bool DisableScriptTags = false;
    bool VerifyFileSignatures = true;
    bool DisableFileVersionCheck = false;
    std::string NetworkConnectionName;
    std::optional<bool> ConnectionOffline; ///< set when the connection was switched meanwhile
    // Status
    int ProgressBarRefreshRate = 5; ///< seconds
    // Beyond
    bool WideRecordIds = true;
    bool ThumbnailsWhileImporting = false;
    bool TemplateMatchByTitle = true;
    /// Writes the settings that otherwise hold until the program ends only.
    bool KeepAllOptions = false;
};

/// The dialog's first step of a new project, or an ordinary call.
struct OptionsOccasion {
    bool newProject = false;
    /// Closes the open project before the new one's values come into force.
    std::function<void()> closeOpenProject;
    /// The examiner has agreed to write over this file already.
    std::filesystem::path overwriteAgreed;
};

/// Where the dialog stays when it can't go on.
enum class OptionsField { none, project, base, temp, templates, publish, zone };

struct OptionsOutcome {
    bool applied = false;
    OptionsField focus = OptionsField::none;
};

/// What the dialog shows at first. `zones` is its list.
Options readOptions(const Program &program, const std::vector<ZoneRow> &zones);
/// The same for a new project, with a file that isn't there yet.
Options readNewProjectOptions(const Program &program, const std::vector<ZoneRow> &zones);

/// Validates and applies, step by step: what was applied before a refusal stays applied. The
/// examiner is told of the refusal. A failure to write is logged.
OptionsOutcome applyOptions(Program &program, const Options &options,
                            const OptionsOccasion &occasion = {});

/// Now, in that format.
std::string sampleOf(const Program &program, std::string_view format);
/// The choice of a format is written at once; gives the sample.
std::string chooseDateFormat(Program &program, std::string_view format);
std::string chooseTimeFormat(Program &program, std::string_view format);

/// The zones for the list. The examiner is told when there are none to be had.
std::vector<ZoneRow> InitTimeZone(Program &program);

/// The state of the connection `name`, and switching it over, whichever connection the settings
/// name. Gives the state afterwards.
std::string connectionStatus(Program &program, const std::string &name);
std::string switchConnectionOver(Program &program, const std::string &name);

} // namespace nv
