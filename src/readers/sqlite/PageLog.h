#pragma once

#include "readers/ByteSource.h"

#include <string>

namespace nv {

/// What of the log of pages beside an SQLite file ("History-wal") is lost by damage: SQLite reads a
/// log as far as its frames are sound, and says nothing of those behind. Names the offset of the
/// first frame that isn't; empty for a sound log. Frames of an earlier use of the log that are
/// still behind its end, and those of a change that was never committed, are no damage. Throws
/// FileFailure.
std::string pageLogDamage(const ByteSource &log);

} // namespace nv
