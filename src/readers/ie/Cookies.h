#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

namespace nv {

/// Reads the index.dat of a cookies folder. Failures are trapped: they stand in the log and in the
/// result.
ReadResult parseIECookies(ReadContext &ctx);

/// The same for bytes in memory; the file in `ctx` says where the cookies' text files lie.
ReadResult readIECookies(ReadContext &ctx, ByteView bytes);

} // namespace nv
