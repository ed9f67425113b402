#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "time/ZoneDatabase.h"

namespace nv::cli {

namespace {

Exit run(Session &session, Format format) {
    const ZoneDatabase zones(session.program.paths.zones(), session.program.log);
    const auto writer = makeRowWriter(
        format, session.out,
        {"Time_Zone_ID", "UTC_Offset", "Landmarks", "STD_Time_Zone", "STD_Bias", "UsesDST"});
    for (const ZoneRow &zone : zones.listZones())
        writer->row({zone.Time_Zone_ID, zone.UTC_Offset, zone.Landmarks, zone.STD_Time_Zone,
                     zone.STD_Bias, zone.UsesDST});
    writer->finish();
    return Exit::ok;
}

} // namespace

Command zonesCommand() {
    const auto format = std::make_shared<Format>(Format::table);
    return {.name = "zones",
            .what = "The time zones and their ids",
            .readme = {"`zones`", "lists the numbers for `--zone`"},
            .examples = {{"zones", "the numbers for import --zone"}, {"zones --format csv", ""}},
            .arguments = {formatOption(*format)},
            .run = [format](Session &session) { return run(session, *format); }};
}

} // namespace nv::cli
