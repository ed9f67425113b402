#pragma once

#include "reports/report/ReportContext.h"

#include <string>

namespace nv {

/// Where the values of the records with the tick come from, as a table a record. Nothing after a
/// cancel. Throws the database's errors.
std::string originSection(const ReportContext &ctx);

} // namespace nv
