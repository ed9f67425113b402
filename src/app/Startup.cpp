#include "app/messages/Messages.h"
#include "app/options/SettingsInForce.h"
#include "app/options/SettingsTable.h"
#include "app/program/Program.h"
#include "app/program/TempFolder.h"
#include "app/program/Version.h"
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

void takeVersion(ProgramState &state) {
    state.appTitle = "Norvelane";
    state.appBuildMajor = version::kMajor;
    state.appBuildMinor = version::kMinor;
    state.appBuildRevision = version::kRevision;
    state.appVersion =
        fmt::format("{}.{}.{}", version::kMajor, version::kMinor, version::kRevision);
}

/// The one beside the program, until the settings name one that is there.
void findCompanionTool(Program &program) {
    const SettingFacts &setting = TextKey("OstermoorEXEPath").row();
    for (const std::string &path : {defaultOf(program, setting), valueOf(program, setting)})
        if (fs::exists(path))
            program.state.ostermoorEXEPath = path;
}

/// The machine's zone without its daylight shift until a project sets one: see ZoneDatabase.
void takeMachineZone(Program &program) {
    const Clock &clock = program.around.clock;
    TimeZone &zone = program.state.gmtZone;
    zone = ZoneDatabase(program.paths.zones(), program.log)
               .getSystemTimeZone(zone, program.around.systemTime.zone(),
                                  Date::fromTimePoint(clock.now() + clock.localOffset()));
}

void emptyTempFolder(Program &program, const fs::path &tempFolder) {
    const bool isWindow = program.front == Front::window;
    const auto failure = failureOf(program.log, "Main()", [&] {
        if (!isWindow) {
            Unwatched nobody;
            return emptyTempFolder(tempFolder, program.front, nobody);
        }
        const OpenTask task(program.task, {});
        emptyTempFolder(tempFolder, program.front, program.task);
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
      settings(paths.settings(), log), task(around.status), state(log, around.clock) {}

/// The shapes of photographs.
void resetPardRange(ProgramState &state) {
    state.pard.fromValue = 15;
    state.pard.toValue = 40;
}

void takeTempFolder(Program &program, const fs::path &tempFolder) {
    ProgramState &state = program.state;
    state.tempFolderRoot = tempFolder;
    for (const auto &folder : program.scratch) {
        if (folder->tempFolder() == tempFolder) {
            state.tempFolderPath = folder->path();
            return;
        }
    }
    emptyTempFolder(program, tempFolder);
    program.scratch.push_back(std::make_unique<ScratchFolder>(tempFolder, program.front));
    state.tempFolderPath = program.scratch.back()->path();
    if (program.front == Front::window)
        writeScratchPages(tempFileNames(state.tempFolderPath));
}

bool isUsableTempFolder(const Program &program, const fs::path &folder) {
    const fs::path &project = program.state.projectDBPath;
    const fs::path &scratch = program.state.tempFolderPath;
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
    const fs::path &ofRun = program.state.tempFolderOfRun;
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
    ProgramState &state = program.state;
    takeVersion(state);
    if (front == Front::window)
        program.log.remove();
    findCompanionTool(program);
    state.tempFolderRoot = tempFolderFrom(program);
    resetPardRange(state);
    takeSettings(program);
    takeMachineZone(program);
    if (front == Front::window)
        takeTempFolder(program, state.tempFolderRoot);
}

} // namespace nv
