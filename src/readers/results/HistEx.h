#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

namespace nv {

/// Reads a file of index records that were cut out of unallocated space. Failures are trapped: they
/// stand in the log and in the result.
ReadResult parseHistExFile(ReadContext &ctx);

/// The same for bytes in memory; the file in `ctx` only names them.
ReadResult readHistEx(ReadContext &ctx, ByteView bytes);

} // namespace nv
