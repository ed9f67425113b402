#include "app/jobs/ZoneJob.h"

#include "app/jobs/Trail.h"
#include "app/messages/ZoneMessages.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "base/Trap.h"
#include "time/ExactZone.h"
#include "views/rows/LocalDates.h"

#include <fmt/format.h>

#include <optional>
#include <string>

namespace nv {

namespace {

constexpr const char *kProcedure = "OptionsForm.SetNewTimeZone()";

/// What the examiner reads of the zone in force.
std::string textOfZone(const TimeZone &zone) {
    return zone.exact ? exactZoneText(zone) : fmt::format("{} ({})", zoneKey(zone), zone.tzName);
}

/// `rows` got their local dates anew; none when the project couldn't be written.
void noteChange(Program &program, const std::string &before, std::optional<std::int64_t> rows) {
    TrailEntry entry;
    entry.action = "Time Zone";
    entry.detail =
        fmt::format("{} -> {}; local dates {}", before, textOfZone(program.state.gmtZone),
                    rows ? "stored anew" : "stay as they were stored");
    entry.rowCount = rows.value_or(0);
    noteInTrail(program, std::move(entry));
}

} // namespace

bool changeZone(Program &program, std::string_view key, TaskMonitor &task) {
    ProgramState &state = program.state;
    const TimeZone before = state.gmtZone;
    const bool wasUnread = state.zoneIsUnread;
    if (!setZone(program, key))
        return false;
    const bool follows = before.exact || state.gmtZone.exact || wasUnread;
    if (!follows || zoneKey(before) == zoneKey(state.gmtZone) || !state.projectDB.isOpen() ||
        state.projectDB.isReadOnly())
        return true;
    std::optional<OpenTask> window;
    if (&task == &program.task)
        window.emplace(program.task, TaskHeading{"STORING LOCAL DATES", "Norvelane", {}, {}});
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
    // Now and not when the project is closed: trail, dates and setting say the same, whatever ends
    // the program.
    keepZone(program);
    noteChange(program, textOfZone(before), rows);
    return true;
}

} // namespace nv
