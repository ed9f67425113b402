#pragma once

#include "app/jobs/RecordTools.h"
#include "reports/warc/WarcSource.h"

namespace nv {

/// For archives that the program writes now. Both must outlive it.
WarcSource warcSource(const Program &program, const RecordTools &tools);

} // namespace nv
