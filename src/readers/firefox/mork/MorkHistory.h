#pragma once

#include "readers/Reader.h"

namespace nv {

/// A history.dat of Firefox 2: a record for each row, with the date of its last visit. Failures are
/// trapped: they stand in the log and in the result.
ReadResult parseMorkFile(ReadContext &ctx);

} // namespace nv
