#include "app/project/Project.h"

#include "app/messages/Messages.h"
#include "app/program/Zones.h"
#include "app/project/ProjectAside.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/Replace.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/project/ProjectFields.h"
#include "db/project/StoredQueries.h"
#include "db/schema/SchemaGaps.h"
#include "db/sql/SideFiles.h"
#include "time/ExactZone.h"
#include "time/ZoneDatabase.h"

#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kZoneSetting = "LastTimeZoneID";
constexpr std::string_view kRootSetting = "RootPath";

ProjectFields fieldsOf(Program &program) {
    return {program.state.projectDB.connection(), program.log};
}

void becomeOpen(Program &program, LogOf log) {
    if (log == LogOf::project)
        program.log.remove();
    ProgramState &state = program.state;
    state.projectDBPath = state.projectDB.filePath;
    const std::string root = fieldsOf(program).getDefault(kRootSetting);
    state.rootPath = pathFromText(root).value_or(root);
    state.currentSQLDef = state.defaultSQLDef;
}

} // namespace

/// A zone that isn't in the table is told of: local dates would be those of another zone in
/// silence.
bool takeStoredZone(Program &program, const ProjectFields &fields) {
    const std::string key = fields.getDefault(kZoneSetting);
    const auto id = fields.defaultNumber(kZoneSetting);
    if (key.empty() || (id && *id <= 0) || setZone(program, key))
        return true;
    if (id && fs::exists(program.paths.zones()) &&
        !ZoneDatabase(program.paths.zones(), program.log).listZones().empty())
        program.around.examiner.tell(messages::zoneNotThere(*id));
    return false;
}

bool isProjectName(const fs::path &path) {
    return equalsNoCase(textOf(path.extension()), ".nvp");
}

bool createProject(Program &program, const fs::path &path, LogOf log) {
    program.projectHold.reset();
    auto hold = std::make_unique<ProjectHold>(path, program.front, program.around.clock);
    ProjectDatabase &project = program.state.projectDB;
    const fs::path whole = fs::absolute(path);
    refuseLoneLog(whole);
    // Whoever is killed meanwhile leaves no file that passes for a project and is none.
    const fs::path aside = placeAside(whole);
    project.filePath = aside;
    project.keywordFolder = program.paths.keywords();
    project.agencyKeywordFolder = program.paths.home / "keywords";
    const bool made = project.createDatabaseProject() &&
                      !failureOf(program.log, "DatabaseClass.CreateDatabaseProject()", [&] {
                          if (!stampVersion(project.connection(), program.log, buildOf(program)))
                              throw StorageFailure("the new project can't keep its version");
                          project.closeDB();
                          removeSideFiles(whole);
                          replaceDurably(aside, whole);
                          project.filePath = whole;
                          project.open();
                      });
    removeDatabase(aside);
    if (!made)
        return false;
    program.projectHold = std::move(hold);
    becomeOpen(program, log);
    // The machine's zone as found at the start knows no daylight time; taken by its id it does.
    if (const TimeZone &zone = program.state.gmtZone; !zone.exact)
        setZone(program, zone.tzTimeZoneID);
    return true;
}

void openProject(Program &program, const fs::path &path, Access access, Holding holding,
                 LogOf log) {
    program.projectHold.reset();
    std::unique_ptr<ProjectHold> hold;
    if (access != Access::read && holding == Holding::yes && fs::exists(path))
        hold = std::make_unique<ProjectHold>(path, program.front, program.around.clock);
    ProjectDatabase &project = program.state.projectDB;
    project.filePath = fs::absolute(path);
    project.open(access);
    program.projectHold = std::move(hold);
    becomeOpen(program, log);
    program.state.zoneIsUnread = false;
    program.state.zoneIsUnread = !takeStoredZone(program, fieldsOf(program));
}

void requireZones(Program &program) {
    const fs::path file = program.paths.zones();
    const auto refuse = [&file](std::string_view what, std::string_view why) {
        throw StorageFailure(
            fmt::format("{}: \"{}\" {}. Nothing was imported", what, textOf(file), why));
    };
    if (!fs::exists(file))
        refuse("the table of time zones is missing", "was expected");
    if (ZoneDatabase(file, program.log).listZones().empty())
        refuse("the table of time zones is damaged", "can't be read");
    if (program.state.zoneIsUnread)
        throw StorageFailure(
            fmt::format("the project's time zone is not known: \"{}\". Nothing was imported",
                        fieldsOf(program).getDefault(kZoneSetting)));
}

void requireSchema(Program &program) {
    ProgramState &state = program.state;
    if (const std::string missing = missingForImport(state.projectDB.connection());
        !missing.empty())
        throw StorageFailure(fmt::format(
            "the project \"{}\" was made by an earlier build and lacks {}: the Upgrade Wizard or "
            "the command upgrade --fix adds it. Nothing was imported",
            textOf(state.projectDBPath), missing));
}

DateSettings dateSettings(const Program &program) {
    const ProgramState &state = program.state;
    const int year = Date::fromTimePoint(program.around.clock.now()).civil().year;
    return {state.dateFormat, state.timeFormat, state.enableDSTChanges, year};
}

void keepZone(Program &program) {
    if (!fieldsOf(program).saveDefaultSetting(kZoneSetting, zoneKey(program.state.gmtZone)))
        program.around.examiner.tell(messages::projectValuesNotKept({std::string(kZoneSetting)}));
}

void closeProject(Program &program) {
    ProgramState &state = program.state;
    if (!state.projectDB.isReadOnly()) {
        if (!state.zoneIsUnread)
            keepZone(program);
        StoredQueries(state.projectDB.connection()).resetDEFAULTQuery();
    }
    state.zoneIsUnread = false;
    state.projectDB.closeDB();
    program.projectHold.reset();
    state.projectDBPath.clear();
    state.rootPath.clear();
    state.currentSQLDef = state.defaultSQLDef;
    program.import.historyFiles.clear();
    program.import.gaps = {};
}

void setRootPath(Program &program, const fs::path &root) {
    program.state.rootPath = root;
    if (program.state.projectDB.isReadOnly() ||
        fieldsOf(program).saveDefaultSetting(kRootSetting, textOf(root)))
        return;
    throw StorageFailure(fmt::format("the project can't keep its base folder \"{}\"; see \"{}\"",
                                     textOf(root), textOf(program.log.path())));
}

AppBuild buildOf(const Program &program) {
    const ProgramState &state = program.state;
    return {state.appBuildMajor, state.appBuildMinor, state.appBuildRevision};
}

bool isOlderProject(Program &program) {
    if (program.state.disableFileVersionCheck)
        return false;
    SQLite::Database &project = program.state.projectDB.connection();
    return stampOf(project, program.log) < buildOf(program) || !missingForImport(project).empty();
}

} // namespace nv
