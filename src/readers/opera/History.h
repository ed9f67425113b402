#pragma once

#include "readers/Reader.h"

namespace nv {

/// Opera's history of visits, a text with four lines a record, or its list of typed addresses,
/// which is XML. Failures are trapped: they stand in the log and in the result.
ReadResult parseOperaHistoryFile(ReadContext &ctx);

} // namespace nv
