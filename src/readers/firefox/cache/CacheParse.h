#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads the disk cache of Firefox 2 and 3 from its map "_CACHE_MAP_" and the block files beside
/// it: a record for each entry. Bodies are not read. Failures are trapped: they stand in the log
/// and in the result.
ReadResult parseFirefoxCache(ReadContext &ctx);

} // namespace nv
