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

} // namespace nv::cli
