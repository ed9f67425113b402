#pragma once

#include "app/program/ErrorLog.h"
#include "app/program/Front.h"
#include "app/program/ProgramPaths.h"
#include "app/program/ProgramState.h"
#include "app/program/ProjectHold.h"
#include "app/program/ScratchFolder.h"
#include "app/program/TaskStatus.h"
#include "app/settings/IniFile.h"
#include "base/Clock.h"
#include "base/Examiner.h"
#include "import/ImportSettings.h"
#include "platform/Network.h"
#include "platform/SystemTime.h"

#include <memory>
#include <vector>

namespace nv {

/// What differs between the window, the headless program and tests. All must outlive the Program.
struct Surroundings {
    Examiner &examiner;
    StatusView &status;
    const Clock &clock;
    const SystemTime &systemTime;
    Network &network;
};

/// The long-lived objects of the process, in the order of their making. They are handed down by
/// reference; nothing reaches for them through a global.
struct Program {
    Program(ProgramPaths where, Front whichFront, const Surroundings &surroundings);

    ProgramPaths paths;
    Front front;
    Surroundings around;
    ErrorLog log;
    IniFile settings;
    TaskStatus task;
    /// All that this process has worked in: what is shown, or open, may lie in an earlier one.
    std::vector<std::unique_ptr<ScratchFolder>> scratch;
    std::unique_ptr<ProjectHold> projectHold; ///< of a project open for writing; goes after it
    ProgramState state;
    ImportSettings import;
};

/// The start-up steps between the splash and the main window: version, log, companion tool,
/// settings, Temp folder, zone, scratch pages.
void startUp(Program &program, Front front);

/// The P.A.R.D. range of a start, and of a project that is opened next.
void resetPardRange(ProgramState &state);

/// Works below `tempFolder` from now on, in a folder of this process's own. What processes that are
/// gone have left there is removed; a failure to do so is told in the window and logged.
/// Throws StorageFailure when there can't be a folder.
void takeTempFolder(Program &program, const std::filesystem::path &tempFolder);

/// The folder that a Temp setting leads to: the one named when it can be used, else the default,
/// which is made. Never a folder that holds the program, its settings, the user's home or the
/// project: nobody looks for those among scratch files.
std::filesystem::path tempFolderFrom(const Program &program);
/// It is there, can be written to, and holds none of those.
bool isUsableTempFolder(const Program &program, const std::filesystem::path &folder);

} // namespace nv
