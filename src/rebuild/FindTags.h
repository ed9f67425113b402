#pragma once

#include "db/records/UrlRecord.h"
#include "rebuild/PageSource.h"
#include "rebuild/RebuildContext.h"

#include <cstddef>

namespace nv {

/// Finds the references in the cached page and stores them as the page's rows of `Tags`, in place
/// of those of an earlier rebuild. The number of tags found; 0 when there are none, when the page's
/// content is gone, when cancelled, and after a failure, which is logged.
std::size_t findTagsInFile(const UrlRecord &page, PageSource &source, const RebuildContext &ctx);

} // namespace nv
