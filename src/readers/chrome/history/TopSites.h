#pragma once

#include "readers/Reader.h"

namespace nv {

/// "Top Sites": a record for each page on the page of a new tab that the history beside it doesn't
/// list.
ReadResult parseChromeTopSitesFile(ReadContext &ctx);

} // namespace nv
