#include "app/Project.h"

#include "app/Messages.h"
#include "base/Files.h"
#include "base/Text.h"
#include "db/ProjectFields.h"
#include "db/StoredQueries.h"
#include "time/ZoneDatabase.h"

#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kZoneSetting = "LastTimeZoneID";
constexpr std::string_view kRootSetting = "RootPath";

ProjectFields fieldsOf(Program &program) {
    return {program.thisClass.ProjectDB.connection(), program.log};
}

void removeProjectFiles(const fs::path &path) {
    for (const char *suffix : {"", "-wal", "-shm", "-journal"}) {
        std::error_code ignored;
        fs::remove(path.native() + suffix, ignored);
    }
}

void becomeOpen(Program &program, LogOf log) {
    if (log == LogOf::project)
        program.log.remove();
    ThisClass &state = program.thisClass;
    state.ProjectDBPath = state.ProjectDB.FilePath;
    state.RootPath = fieldsOf(program).GetDefault(kRootSetting);
    state.CurrentSQLDef = state.DefaultSQLDef;
}

} // namespace

bool isProjectName(const fs::path &path) {
    return equalsNoCase(textOf(path.extension()), ".nvp");
}

bool createProject(Program &program, const fs::path &path, LogOf log) {
    program.projectHold.reset();
    auto hold = std::make_unique<ProjectHold>(path, program.front, program.around.clock);
    removeProjectFiles(path);
    DatabaseClass &project = program.thisClass.ProjectDB;
    project.FilePath = fs::absolute(path);
    project.KeywordFolder = program.paths.keywords();
    project.AgencyKeywordFolder = program.paths.home / "keywords";
    if (!project.CreateDatabaseProject())
        return false;
    program.projectHold = std::move(hold);
    stampVersion(project.connection(), program.log, buildOf(program));
    becomeOpen(program, log);
    // The machine's zone as found at the start knows no daylight time; taken by its id it does.
    setZone(program, program.thisClass.GMTZone.tzTimeZoneID);
    return true;
}

void openProject(Program &program, const fs::path &path, Access access, Holding holding,
                 LogOf log) {
    program.projectHold.reset();
    std::unique_ptr<ProjectHold> hold;
    if (access != Access::read && holding == Holding::yes && fs::exists(path))
        hold = std::make_unique<ProjectHold>(path, program.front, program.around.clock);
    DatabaseClass &project = program.thisClass.ProjectDB;
    project.FilePath = fs::absolute(path);
    project.open(access);
    program.projectHold = std::move(hold);
    becomeOpen(program, log);
    const auto zone = fieldsOf(program).defaultNumber(kZoneSetting);
    if (zone && *zone > 0)
        setZone(program, *zone);
}

bool setZone(Program &program, std::int64_t id) {
    ThisClass &state = program.thisClass;
    const Clock &clock = program.around.clock;
    const ZoneChange change =
        ZoneDatabase(program.paths.zones(), program.log)
            .SetNewTimeZone(state.GMTZone, static_cast<std::int32_t>(id),
                            Date::fromTimePoint(clock.now() + clock.localOffset()),
                            state.EnableDSTChanges);
    if (change.errorNumber != 0)
        program.around.examiner.tell(messages::zoneNotSet(change.errorNumber));
    return change.found;
}

DateSettings dateSettings(const Program &program) {
    const ThisClass &state = program.thisClass;
    const int year = Date::fromTimePoint(program.around.clock.now()).civil().year;
    return {state.DateFormat, state.TimeFormat, state.EnableDSTChanges, year};
}

void closeProject(Program &program) {
    ThisClass &state = program.thisClass;
    if (!state.ProjectDB.isReadOnly()) {
        fieldsOf(program).SaveDefaultSetting(kZoneSetting,
                                             fmt::format("{}", state.GMTZone.tzTimeZoneID));
        StoredQueries(state.ProjectDB.connection()).ResetDEFAULTQuery();
    }
    state.ProjectDB.CloseDB();
    program.projectHold.reset();
    state.ProjectDBPath.clear();
    state.RootPath.clear();
    state.CurrentSQLDef = state.DefaultSQLDef;
    program.import.HistoryFiles.Clear();
}

void setRootPath(Program &program, const fs::path &root) {
    program.thisClass.RootPath = root;
    if (!program.thisClass.ProjectDB.isReadOnly())
        fieldsOf(program).SaveDefaultSetting(kRootSetting, textOf(root));
}

AppBuild buildOf(const Program &program) {
    const ThisClass &state = program.thisClass;
    return {state.AppBuildMajor, state.AppBuildMinor, state.AppBuildRevision};
}

bool isOlderProject(Program &program) {
    if (program.thisClass.DisableFileVersionCheck)
        return false;
    return stampOf(program.thisClass.ProjectDB.connection(), program.log) < buildOf(program);
}

} // namespace nv
