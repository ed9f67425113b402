#pragma once

#include "readers/Reader.h"
#include "readers/chrome/history/PageTable.h"
#include "readers/sqlite/FurtherTables.h"

#include <string_view>

namespace nv {

/// A record for each row of table `keyword_search_terms`, with the address and the date of its
/// page. False when cancelled.
[[nodiscard]] bool saveSearchTerms(FurtherTables &tables, ReadContext &ctx, const PageTable &pages,
                                   Stretch stretch, Date fileCreated, std::string_view procedure,
                                   ReadResult &result);

} // namespace nv
