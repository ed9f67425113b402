#pragma once

#include "app/settings/SettingValues.h"
#include "db/project/ProjectDatabase.h"
#include "time/TimeZone.h"
#include "views/gallery/Pard.h"
#include "views/queries/QueryDefinitions.h"
#include "views/record/ViewerContent.h"
#include "views/rows/RecordFilters.h"

#include <filesystem>
#include <string>

namespace nv {

/// The shared state of the program: a plain bag with no logic, passed by reference. Members stand
/// at the zero of their type until start-up fills them; those that are settings are inherited.
struct ProgramState : QueryDefinitions, SettingValues {
    ProgramState(FailureLog &log, const Clock &clock)
        : projectDB(log, clock), gmtZone(Date::fromTimePoint(clock.now() + clock.localOffset())) {}

    // Version
    int appBuildMajor = 0;
    int appBuildMinor = 0;
    int appBuildRevision = 0;
    std::string appVersion;
    std::string appTitle;

    // Paths
    std::filesystem::path rootPath; ///< the project's base root folder
    /// The folder of this process's own below the Temp folder; the headless program has none until
    /// it needs one.
    std::filesystem::path tempFolderPath;
    /// The Temp folder of the settings, which the processes share.
    std::filesystem::path tempFolderRoot;
    /// Chosen in Options: goes before that of the settings until the program ends.
    std::filesystem::path tempFolderOfRun;
    std::filesystem::path projectDBPath;
    std::filesystem::path ostermoorEXEPath;

    // Database
    ProjectDatabase projectDB;

    // Hosts and filters
    bool filterByHostEnabled = false;       ///< until turned off, over projects
    std::string filterByHostValue;          ///< part of a host's name
    RecordFilters filters = firstFilters(); ///< over projects, but not kept between runs

    // Viewers
    ViewerContent viewer;
    bool noResizePicture = false; ///< pictures are shown in their own size

    // Gallery
    PardChoice pard; ///< until the program ends: no picture is hidden by an earlier run's choice

    // Formats and time
    std::string dateTimeFormat;
    TimeZone gmtZone; ///< the zone of the open project
    /// The open project keeps a zone that could not be taken into force.
    bool zoneIsUnread = false;
    bool enableDSTChanges = true;
};

} // namespace nv
