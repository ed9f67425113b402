#pragma once

#include "reports/report/ReportWriter.h"

#include <string>

namespace nv {

/// The opening of the table, with the heading cells that the report includes.
std::string tabularHead(const ReportWriter &report);
/// The row of the record in hand. Throws.
std::string tabularRow(const ReportWriter &report, const UrlRecord &record,
                       const ReportContext &ctx);
/// In the place of a row that can't be written.
std::string brokenRow(UrlId id, std::size_t index);

} // namespace nv
