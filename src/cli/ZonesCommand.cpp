#include "app/program/Zones.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "time/ZoneDatabase.h"

namespace nv::cli {

namespace {

struct Arguments {
    Format format = Format::table;
    bool exact = false;
};

/// The zones of the system, with what they have now.
void listExact(Session &session, Format format) {
    const ExactZones zones = exactZones(session.program);
    zones.require();
    const Date now = Date::fromTimePoint(session.program.around.clock.now());
    const auto writer = makeRowWriter(format, session.out, {"Name", "Offset", "Code", "Zoneinfo"});
    for (const std::string &name : zones.names()) {
        const auto zone = exactZoneNamed(session.program, name);
        const ZoneMoment law = zone->at(now);
        writer->row({name, offsetText(law.offset), law.abbreviation, zone->version()});
    }
    writer->finish();
}

void listClassic(Session &session, Format format) {
    const ZoneDatabase zones(session.program.paths.zones(), session.program.log);
    const auto writer = makeRowWriter(
        format, session.out,
        {"Time_Zone_ID", "UTC_Offset", "Landmarks", "STD_Time_Zone", "STD_Bias", "UsesDST"});
    for (const ZoneRow &zone : zones.listZones())
        writer->row({zone.timeZoneID, zone.utcOffset, zone.landmarks, zone.stdTimeZone,
                     zone.stdBias, zone.usesDST});
    writer->finish();
}

Exit run(Session &session, const Arguments &arguments) {
    if (arguments.exact)
        listExact(session, arguments.format);
    else
        listClassic(session, arguments.format);
    return Exit::ok;
}

} // namespace

Command zonesCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "zones",
            .what = "The time zones and their ids",
            .readme = {"`zones`", "lists the numbers for `--zone`; `--exact` the names"},
            .examples = {{"zones", "the numbers for import --zone"},
                         {"zones --format csv", ""},
                         {"zones --exact", "the names for import --zone"}},
            .arguments = {formatOption(given->format),
                          flag("--exact", given->exact,
                               "The zones of the system's zoneinfo, which go by the law of each "
                               "date")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
