#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

namespace nv {

/// Opera's history of visits, a text with four lines a record, or its list of typed addresses,
/// which is XML. Failures are trapped: they stand in the log and in the result.
ReadResult parseOperaHistoryFile(ReadContext &ctx);

/// The same for bytes in memory; the file in `ctx` names them.
ReadResult readOperaHistory(ReadContext &ctx, ByteView bytes);

} // namespace nv
