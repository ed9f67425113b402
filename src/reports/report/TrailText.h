#pragma once

#include "reports/report/ReportContext.h"

#include <string>

namespace nv {

/// What was done with the project up to now, as a table. Throws the database's errors.
std::string trailSection(const ReportContext &ctx);

} // namespace nv
