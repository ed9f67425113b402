#include "app/Project.h"

#include "app/Messages.h"
#include "app/ProjectAside.h"
#include "app/Zones.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/Replace.h"
#include "base/Text.h"
#include "base/Trap.h"
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

void becomeOpen(Program &program, LogOf log) {
    if (log == LogOf::project)
        program.log.remove();
    ThisClass &state = program.thisClass;
    state.ProjectDBPath = state.ProjectDB.FilePath;
    const std::string root = fieldsOf(program).GetDefault(kRootSetting);
    state.RootPath = pathFromText(root).value_or(root);
    state.CurrentSQLDef = state.DefaultSQLDef;
}

} // namespace

/// A zone that isn't in the table is told of: local dates would be those of another zone in
/// silence.
bool takeStoredZone(Program &program, const ProjectFields &fields) {
    const std::string key = fields.GetDefault(kZoneSetting);
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
    DatabaseClass &project = program.thisClass.ProjectDB;
    const fs::path whole = fs::absolute(path);
    refuseLoneLog(whole);
    // Whoever is killed meanwhile leaves no file that passes for a project and is none.
    const fs::path aside = placeAside(whole);
    project.FilePath = aside;
    project.KeywordFolder = program.paths.keywords();
    project.AgencyKeywordFolder = program.paths.home / "keywords";
    const bool made = project.CreateDatabaseProject() &&
                      !failureOf(program.log, "DatabaseClass.CreateDatabaseProject()", [&] {
                          stampVersion(project.connection(), program.log, buildOf(program));
                          project.CloseDB();
                          removeBeside(whole);
                          replaceDurably(aside, whole);
                          project.FilePath = whole;
                          project.open();
                      });
    removeProjectFiles(aside);
    if (!made)
        return false;
    program.projectHold = std::move(hold);
    becomeOpen(program, log);
    // The machine's zone as found at the start knows no daylight time; taken by its id it does.
    if (const TimeZoneClass &zone = program.thisClass.GMTZone; !zone.exact)
        setZone(program, zone.tzTimeZoneID);
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
    program.thisClass.ZoneIsUnread = false;
    program.thisClass.ZoneIsUnread = !takeStoredZone(program, fieldsOf(program));
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
    if (program.thisClass.ZoneIsUnread)
        throw StorageFailure(
            fmt::format("the project's time zone is not known: \"{}\". Nothing was imported",
                        fieldsOf(program).GetDefault(kZoneSetting)));
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
    state.ZoneIsUnread = state.ZoneIsUnread && !change.found;
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
        if (!state.ZoneIsUnread)
            fieldsOf(program).SaveDefaultSetting(kZoneSetting, zoneKey(state.GMTZone));
        StoredQueries(state.ProjectDB.connection()).ResetDEFAULTQuery();
    }
    state.ZoneIsUnread = false;
    state.ProjectDB.CloseDB();
    program.projectHold.reset();
    state.ProjectDBPath.clear();
    state.RootPath.clear();
    state.CurrentSQLDef = state.DefaultSQLDef;
    program.import.HistoryFiles.Clear();
    program.import.gaps = {};
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
