#pragma once

#include "app/SettingValues.h"
#include "db/DatabaseClass.h"
#include "time/TimeZoneClass.h"
#include "views/FiltersClass.h"
#include "views/Pard.h"
#include "views/QueryDefinitions.h"
#include "views/ViewerClass.h"

#include <filesystem>
#include <string>

namespace nv {

/// The shared state of the program: a plain bag with no logic, passed by reference. Members stand
/// at the zero of their type until start-up fills them; those that are settings are inherited.
struct ThisClass : QueryDefinitions, SettingValues {
    ThisClass(FailureLog &log, const Clock &clock)
        : ProjectDB(log, clock), GMTZone(Date::fromTimePoint(clock.now() + clock.localOffset())) {}

    // Version
    int AppBuildMajor = 0;
    int AppBuildMinor = 0;
    int AppBuildRevision = 0;
    std::string AppVersion;
    std::string AppTitle;

    // Paths
    std::filesystem::path RootPath; ///< the project's base root folder
    /// The folder of this process's own below the Temp folder; the headless program has none until
    /// it needs one.
    std::filesystem::path TempFolderPath;
    /// The Temp folder of the settings, which the processes share.
    std::filesystem::path TempFolderRoot;
    /// Chosen in Options: goes before that of the settings until the program ends.
    std::filesystem::path TempFolderOfRun;
    std::filesystem::path ProjectDBPath;
    std::filesystem::path OstermoorEXEPath;

    // Database
    DatabaseClass ProjectDB;

    // Hosts and filters
    bool FilterByHostEnabled = false;      ///< until turned off, over projects
    std::string FilterByHostValue;         ///< part of a host's name
    FiltersClass Filters = firstFilters(); ///< over projects, but not kept between runs

    // Viewers
    ViewerClass Viewer;
    bool NoResizePicture = false; ///< pictures are shown in their own size

    // Gallery
    PARDClass PARD; ///< until the program ends: no picture is hidden by an earlier run's choice

    // Formats and time
    std::string DateTimeFormat;
    TimeZoneClass GMTZone; ///< the zone of the open project
    /// The open project keeps a zone that could not be taken into force.
    bool ZoneIsUnread = false;
    bool EnableDSTChanges = true;
};

} // namespace nv
