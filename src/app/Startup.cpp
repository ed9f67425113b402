#include "app/Messages.h"
#include "app/Program.h"
#include "app/SettingsInForce.h"
#include "app/SettingsTable.h"
#include "app/TempFolder.h"
#include "app/Version.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/Trap.h"
#include "time/ZoneDatabase.h"

#include <fmt/format.h>

#include <cstdlib>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

void takeVersion(ThisClass &state) {
    state.AppTitle = "Norvelane";
    state.AppBuildMajor = version::kMajor;
    state.AppBuildMinor = version::kMinor;
    state.AppBuildRevision = version::kRevision;
    state.AppVersion =
        fmt::format("{}.{}.{}", version::kMajor, version::kMinor, version::kRevision);
}

/// The one beside the program, until the settings name one that is there.
void findCompanionTool(Program &program) {
    const SettingFacts &setting = TextKey("OstermoorEXEPath").row();
    for (const std::string &path : {defaultOf(program, setting), valueOf(program, setting)})
        if (fs::exists(path))
            program.thisClass.OstermoorEXEPath = path;
}

/// The machine's zone without its daylight shift until a project sets one: see ZoneDatabase.
void takeMachineZone(Program &program) {
    const Clock &clock = program.around.clock;
    TimeZoneClass &zone = program.thisClass.GMTZone;
    zone = ZoneDatabase(program.paths.zones(), program.log)
               .GetSystemTimeZone(zone, program.around.systemTime.zone(),
                                  Date::fromTimePoint(clock.now() + clock.localOffset()));
}

void emptyTempFolder(Program &program, const fs::path &tempFolder) {
    const bool isWindow = program.front == Front::window;
    const auto failure = failureOf(program.log, "Main()", [&] {
        if (!isWindow) {
            Unwatched nobody;
            return EmptyTempFolder(tempFolder, program.front, nobody);
        }
        const OpenTask task(program.thread, {});
        EmptyTempFolder(tempFolder, program.front, program.thread);
    });
    if (failure && isWindow)
        program.around.examiner.tell(messages::tempFolderNotCleared(*failure));
}

bool holds(const fs::path &folder, const fs::path &inner) {
    const fs::path relative = wholePath(inner).lexically_relative(wholePath(folder));
    return !relative.empty() && *relative.begin() != "..";
}

} // namespace

Program::Program(ProgramPaths where, Front whichFront, const Surroundings &surroundings)
    : paths(std::move(where)), front(whichFront), around(surroundings),
      log(paths.errorLog(whichFront == Front::headless), around.clock),
      settings(paths.settings(), log), thread(around.status), thisClass(log, around.clock) {}

/// The shapes of photographs.
void resetPardRange(ThisClass &state) {
    state.PARD.FromValue = 15;
    state.PARD.ToValue = 40;
}

void takeTempFolder(Program &program, const fs::path &tempFolder) {
    ThisClass &state = program.thisClass;
    state.TempFolderRoot = tempFolder;
    for (const auto &folder : program.scratch) {
        if (folder->tempFolder() == tempFolder) {
            state.TempFolderPath = folder->path();
            return;
        }
    }
    emptyTempFolder(program, tempFolder);
    program.scratch.push_back(std::make_unique<ScratchFolder>(tempFolder, program.front));
    state.TempFolderPath = program.scratch.back()->path();
    if (program.front == Front::window)
        WriteScratchPages(tempFileNames(state.TempFolderPath));
}

bool isUsableTempFolder(const Program &program, const fs::path &folder) {
    const fs::path &project = program.thisClass.ProjectDBPath;
    const fs::path &scratch = program.thisClass.TempFolderPath;
    const bool isScratchProject = !project.empty() && !scratch.empty() && holds(scratch, project);
    const char *home = std::getenv("HOME");
    std::error_code notThere;
    return fs::is_directory(folder, notThere) && ::access(folder.c_str(), W_OK) == 0 &&
           !holds(folder, program.paths.program) && !holds(folder, program.paths.home) &&
           !holds(folder, program.paths.config) && !holds(folder, program.paths.state) &&
           !(home && *home && holds(folder, home)) &&
           (project.empty() || isScratchProject || !holds(folder, project));
}

fs::path tempFolderFrom(const Program &program) {
    const fs::path &ofRun = program.thisClass.TempFolderOfRun;
    if (!ofRun.empty() && isUsableTempFolder(program, ofRun))
        return ofRun;
    const SettingFacts &setting = TextKey("TempFolderPath").row();
    const fs::path named = valueOf(program, setting);
    if (isUsableTempFolder(program, named))
        return named;
    const fs::path byDefault = defaultOf(program, setting);
    fs::create_directories(byDefault);
    return byDefault;
}

void startUp(Program &program, Front front) {
    ThisClass &state = program.thisClass;
    takeVersion(state);
    if (front == Front::window)
        program.log.remove();
    findCompanionTool(program);
    state.TempFolderRoot = tempFolderFrom(program);
    resetPardRange(state);
    takeSettings(program);
    takeMachineZone(program);
    if (front == Front::window)
        takeTempFolder(program, state.TempFolderRoot);
}

} // namespace nv
