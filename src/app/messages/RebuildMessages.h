#pragma once

#include "base/Examiner.h"

namespace nv::messages {

/// The table's query leaves a part's record out.
Message partRecordUnavailable();

} // namespace nv::messages
