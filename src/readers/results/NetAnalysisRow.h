#pragma once

#include "readers/Reader.h"
#include "readers/results/JetLines.h"

#include <array>
#include <string>
#include <string_view>

namespace nv {

/// The columns of table `History` that are read. A row's cells stand in this order.
inline constexpr std::array<std::string_view, 15> kNetAnalysisColumns = {
    "InternetHistory", "URLFileName", "FileExists",    "FileOffset", "HistoryVersion", "Hostname",
    "ContentData",     "LastVisited", "SecondaryDate", "Comment",    "Type",           "Status",
    "SearchCriteria",  "User",        "Hits"};

/// Whether values of that kind ("bool", "number", "date", "text"; empty for none) are of use in a
/// column of kNetAnalysisColumns.
bool takesNetAnalysisKind(std::size_t column, std::string_view kind);

/// The record of a row that is whole or nearly so. `cachePath` is the case's.
UrlRecord netAnalysisRecord(const ReadContext &ctx, const JetRow &row,
                            const std::string &cachePath);

} // namespace nv
