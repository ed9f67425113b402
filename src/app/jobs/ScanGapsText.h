#pragma once

#include "import/ScanGaps.h"

#include <string>

namespace nv {

/// A line for each file or folder that could not be read, with the reason.
std::string unreadableText(const ScanGaps &gaps);

/// A line for each way in which something was left out, with its count; empty for none.
std::string gapsText(const ScanGaps &gaps);

} // namespace nv
