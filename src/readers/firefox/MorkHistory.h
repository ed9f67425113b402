#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

namespace nv {

/// A history.dat of Firefox 2: a record for each row, with the date of its last visit. Failures are
/// trapped: they stand in the log and in the result.
ReadResult parseMorkFile(ReadContext &ctx);

/// The same for bytes in memory; the file in `ctx` only names them.
ReadResult readMorkHistory(ReadContext &ctx, ByteView bytes);

} // namespace nv
