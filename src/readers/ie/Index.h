#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

namespace nv {

/// Reads an index.dat of the cache, of the main, daily or weekly history, or of another kind that
/// has the same hash. Failures are trapped: they stand in the log and in the result.
ReadResult parseIECacheFile(ReadContext &ctx);

/// The same for bytes in memory; the file in `ctx` only names them.
ReadResult readIEIndex(ReadContext &ctx, ByteView bytes);

} // namespace nv
