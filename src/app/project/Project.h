#pragma once

#include "app/program/Program.h"
#include "db/project/ProjectFields.h"
#include "maintenance/VersionStamp.h"
#include "time/ShownDate.h"

#include <cstdint>
#include <filesystem>

namespace nv {

// What the window and the headless program share of opening and closing a project. All throw
// StorageFailure when the project can't be opened or written.

/// True for a file name with the extension of projects.
bool isProjectName(const std::filesystem::path &path);

/// Whose failures the log holds: from its opening in the window those of a project, and so also
/// that its zone can't be set.
enum class LogOf { run, project };

/// Makes an empty project at `path`, over a file that is there and that nobody has open, and leaves
/// it open with the machine's zone. False when it couldn't be made; the reason is in the log.
/// Throws StorageFailure when another project's log lies there alone.
bool createProject(Program &program, const std::filesystem::path &path, LogOf log = LogOf::run);

/// Whether others are kept from writing to a project while it is open for writing here. A note in
/// the trail is safe beside anybody.
enum class Holding { no, yes };

/// Opens the project at `path`: its zone and base folder are in force afterwards. Throws
/// StorageFailure that says who has it when it is held against this program.
void openProject(Program &program, const std::filesystem::path &path, Access access = Access::write,
                 Holding holding = Holding::yes, LogOf log = LogOf::run);

/// Stores the zone in force in the project, which is open and can be written. Tells when it can't.
void keepZone(Program &program);

/// Keeps zone and base folder in the project, sets the default query back and closes the file. One
/// that was opened for reading is only closed.
void closeProject(Program &program);

/// Keeps the base folder in the open project; rows follow at the next load. Throws StorageFailure
/// when the project can't keep it: it is in force until the project is closed.
void setRootPath(Program &program, const std::filesystem::path &root);

/// Takes the zone that the project of these fields names into force; none is none. False when it
/// names one that can't be had, which the examiner was told.
bool takeStoredZone(Program &program, const ProjectFields &fields);

/// Throws StorageFailure when local dates would be stored by a guess: without a table of zones that
/// can be read, or with an open project whose zone can't be had.
void requireZones(Program &program);
/// Throws StorageFailure when the open project is of an earlier build and lacks what an import
/// writes to.
void requireSchema(Program &program);

/// How dates are shown now.
DateSettings dateSettings(const Program &program);

/// The version of this program.
AppBuild buildOf(const Program &program);

/// The version that made the open project is older than this build, or the project lacks what this
/// one writes; and the check isn't turned off.
bool isOlderProject(Program &program);

} // namespace nv
