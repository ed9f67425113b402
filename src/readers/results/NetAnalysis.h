#pragma once

#include "readers/Reader.h"

namespace nv {

/// A case file of NetAnalysis: a Jet database whose table `History` has one row an event.
ReadResult ParseNetAnalysisFile(ReadContext &ctx);

} // namespace nv
