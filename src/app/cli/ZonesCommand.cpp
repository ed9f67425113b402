#include "app/Zones.h"
#include "app/cli/Commands.h"
#include "time/ZoneDatabase.h"

namespace nv::cli {

Exit zonesCommand(Session &session, Format format) {
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

Exit exactZonesCommand(Session &session, Format format) {
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
    return Exit::ok;
}

} // namespace nv::cli
