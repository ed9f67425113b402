#include "app/Zones.h"

#include "app/jobs/Trail.h"
#include "app/messages/ZoneMessages.h"
#include "app/options/SettingsTable.h"
#include "app/project/Project.h"
#include "base/DisplayText.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "time/ZoneDatabase.h"
#include "views/LocalDates.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace nv {

namespace {

constexpr const char *kProcedure = "OptionsForm.SetNewTimeZone()";

std::optional<std::int64_t> numberIn(std::string_view key) {
    std::int64_t number = 0;
    const char *end = key.data() + key.size();
    const auto [at, error] = std::from_chars(key.data(), end, number);
    return error == std::errc() && at == end ? std::optional(number) : std::nullopt;
}

bool isClassic(Program &program, std::int64_t id) {
    const auto zones = ZoneDatabase(program.paths.zones(), program.log).listZones();
    return std::ranges::any_of(zones, [id](const ZoneRow &zone) { return zone.timeZoneID == id; });
}

/// What the examiner reads of the zone in force.
std::string textOfZone(const TimeZone &zone) {
    return zone.exact ? exactZoneText(zone) : fmt::format("{} ({})", zoneKey(zone), zone.tzName);
}

/// `rows` got their local dates anew; none when the project couldn't be written.
void noteChange(Program &program, const std::string &before, std::optional<std::int64_t> rows) {
    TrailEntry entry;
    entry.action = "Time Zone";
    entry.detail =
        fmt::format("{} -> {}; local dates {}", before, textOfZone(program.thisClass.gmtZone),
                    rows ? "stored anew" : "stay as they were stored");
    entry.rowCount = rows.value_or(0);
    noteInTrail(program, std::move(entry));
}

} // namespace

ExactZones exactZones(const Program &program) {
    return ExactZones(program.paths.zoneinfo);
}

std::shared_ptr<const ExactZone> exactZoneNamed(const Program &program, std::string_view name) {
    const ExactZones zones = exactZones(program);
    if (auto zone = zones.find(name))
        return zone;
    constexpr std::size_t kQuoted = 100; // of a long name
    throw ZoneFailure(fmt::format(
        "there is no time zone \"{}\"{}. The nearest names: {}. `zones --exact` lists all",
        displayText(std::string(charSub(name, 0, kQuoted))), charCount(name) > kQuoted ? "..." : "",
        fmt::join(nearestNames(charSub(name, 0, kQuoted), zones.names()), ", ")));
}

std::string keyInList(Program &program) {
    const TimeZone &zone = program.thisClass.gmtZone;
    const auto rows = ZoneDatabase(program.paths.zones(), program.log).listZones();
    const auto place = placeInList(rows, zone);
    return !zone.exact && place ? fmt::format("{}", rows[*place].timeZoneID) : zoneKey(zone);
}

CheckedZone checkedZone(Program &program, std::string_view key) {
    CheckedZone checked;
    if (const auto id = numberIn(key)) {
        checked.key = fmt::format("{}", *id);
        if (!isClassic(program, *id))
            checked.refusal = "no zone has this id; the command zones lists them";
        return checked;
    }
    const auto failure = failureOf(program.log, kProcedure,
                                   [&] { checked.key = exactZoneNamed(program, key)->name(); });
    checked.refusal = failure.value_or(std::string());
    return checked;
}

std::vector<ZoneHint> knownZoneHints(Program &program, const std::filesystem::path &start,
                                     const HistoryFiles &files) {
    const auto names = exactZones(program).names();
    std::vector<ZoneHint> hints = zoneHints(start, files, program.log);
    std::erase_if(hints, [&names](const ZoneHint &hint) {
        return std::ranges::find(names, hint.zone) == names.end();
    });
    return hints;
}

bool setZone(Program &program, std::string_view key) {
    if (const auto id = numberIn(key))
        return setZone(program, *id);
    ProgramState &state = program.thisClass;
    const auto failure = failureOf(program.log, kProcedure, [&] {
        setExactZone(state.gmtZone, exactZoneNamed(program, key),
                     Date::fromTimePoint(program.around.clock.now()));
    });
    if (failure)
        program.around.examiner.tell(messages::exactZoneNotSet(*failure));
    state.zoneIsUnread = state.zoneIsUnread && failure;
    return !failure;
}

bool changeZone(Program &program, std::string_view key, TaskMonitor &task) {
    ProgramState &state = program.thisClass;
    const TimeZone before = state.gmtZone;
    const bool wasUnread = state.zoneIsUnread;
    if (!setZone(program, key))
        return false;
    const bool follows = before.exact || state.gmtZone.exact || wasUnread;
    if (!follows || zoneKey(before) == zoneKey(state.gmtZone) || !state.projectDB.isOpen() ||
        state.projectDB.isReadOnly())
        return true;
    std::optional<OpenTask> window;
    if (&task == &program.thread)
        window.emplace(program.thread, TaskHeading{"STORING LOCAL DATES", "Norvelane", {}, {}});
    std::optional<std::int64_t> rows;
    const auto failure = failureOf(program.log, kProcedure, [&] {
        rows = storeLocalDates(state.projectDB.connection(),
                               {state.gmtZone, state.enableDSTChanges}, task);
    });
    if (failure) {
        program.around.examiner.tell(messages::localDatesNotStored(*failure));
    } else if (!rows) {
        state.gmtZone = before;
        state.zoneIsUnread = wasUnread;
        return false;
    }
    noteChange(program, textOfZone(before), rows);
    return true;
}

} // namespace nv
