#pragma once

#include "db/records/UrlRecord.h"
#include "rebuild/Harvest.h"
#include "rebuild/RebuildContext.h"

namespace nv {

/// Rebuilds one cached page from what the project still holds: finds its references, chooses a
/// cached part for each, writes the rewritten page into its rebuild folder and into its row, and
/// brings the parts to it. False when the page has no references, when its content is gone, when
/// cancelled, which leaves the rebuild that the record had, and after a failure, which is logged;
/// what was written until then stays.
bool rebuildWebPage(UrlRecord &page, Batch batch, const RebuildContext &ctx, const Clock &clock);

} // namespace nv
