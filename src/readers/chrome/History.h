#pragma once

#include "readers/Reader.h"

namespace nv {

/// The file "History" or "Archived History" of Chrome: a record for each page, with the date of its
/// last visit.
ReadResult parseChromeHistoryFile(ReadContext &ctx);

} // namespace nv
