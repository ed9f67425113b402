#pragma once

#include "app/program/Program.h"

#include <string_view>

namespace nv {

/// Takes the zone of this key (app/program/Zones.h) into force by an examiner's choice: where an
/// exact zone comes or goes, the local dates that an open project stores follow, and its trail has
/// a note. The status window is opened for that where the task is the program's own. False when
/// setZone() refuses the zone, and when the task was cancelled: all is as it was then.
bool changeZone(Program &program, std::string_view key, TaskMonitor &task);

} // namespace nv
