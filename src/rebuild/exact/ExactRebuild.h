#pragma once

#include "base/Clock.h"
#include "db/records/UrlRecord.h"
#include "rebuild/Harvest.h"
#include "rebuild/RebuildContext.h"

#include <filesystem>

namespace nv {

/// Rebuilds one cached page as a browser without scripts reads it, with the cached parts that its
/// references lead to, those of its frames and style sheets, and marked places for what is in no
/// cache. Row and folder then hold it. False when its content is gone or no page, when cancelled,
/// which leaves the rebuild that the record had, and after a failure, which is logged.
bool rebuildExactly(UrlRecord &page, Batch batch, const RebuildContext &ctx, const Clock &clock);

/// Whether the content in `RunTimeTempFilePath` is a page's. Throws FileFailure.
bool isPageContent(const UrlRecord &page);

/// Makes the folder of such a page anew, with the very same bytes: the page from the project, the
/// parts that its notes name from the evidence. A part that is gone leaves no file. False when
/// cancelled, and after a failure, which is logged.
[[nodiscard]] bool harvestExactly(UrlRecord &page, const std::filesystem::path &folder,
                                  const RebuildContext &ctx);

} // namespace nv
