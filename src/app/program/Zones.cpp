#include "app/program/Zones.h"

#include "app/messages/Messages.h"
#include "app/messages/ZoneMessages.h"
#include "base/DisplayText.h"
#include "base/NearestNames.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "time/ZoneDatabase.h"

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
    const TimeZone &zone = program.state.gmtZone;
    const auto rows = ZoneDatabase(program.paths.zones(), program.log).listZones();
    const auto place = placeInList(rows, zone);
    return !zone.exact && place ? fmt::format("{}", rows[*place].timeZoneID) : zoneKey(zone);
}

bool isChosenZone(Program &program) {
    const TimeZone &zone = program.state.gmtZone;
    if (zone.exact)
        return true;
    const ZoneDatabase zones(program.paths.zones(), program.log);
    const Surroundings &around = program.around;
    const Date now = Date::fromTimePoint(around.clock.now() + around.clock.localOffset());
    const TimeZone machine = zones.getSystemTimeZone(TimeZone(now), around.systemTime.zone(), now);
    const auto rows = zones.listZones();
    return placeInList(rows, zone) != placeInList(rows, machine);
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

bool setZone(Program &program, std::int64_t id) {
    ProgramState &state = program.state;
    const Clock &clock = program.around.clock;
    const ZoneChange change =
        ZoneDatabase(program.paths.zones(), program.log)
            .setNewTimeZone(state.gmtZone, static_cast<std::int32_t>(id),
                            Date::fromTimePoint(clock.now() + clock.localOffset()),
                            state.enableDSTChanges);
    if (change.errorNumber != 0)
        program.around.examiner.tell(messages::zoneNotSet(change.errorNumber));
    state.zoneIsUnread = state.zoneIsUnread && !change.found;
    return change.found;
}

bool setZone(Program &program, std::string_view key) {
    if (const auto id = numberIn(key))
        return setZone(program, *id);
    ProgramState &state = program.state;
    const auto failure = failureOf(program.log, kProcedure, [&] {
        setExactZone(state.gmtZone, exactZoneNamed(program, key),
                     Date::fromTimePoint(program.around.clock.now()));
    });
    if (failure)
        program.around.examiner.tell(messages::exactZoneNotSet(*failure));
    state.zoneIsUnread = state.zoneIsUnread && failure;
    return !failure;
}

} // namespace nv
