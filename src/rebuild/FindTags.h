#pragma once

#include "db/URLClass.h"
#include "rebuild/RebuildContext.h"

#include <cstddef>
#include <string>

namespace nv {

/// The page's bytes without line breaks, as references are searched in it, and a copy of them in
/// `RunTimeTempFilePath`. Nothing when its content is gone. Throws FileFailure.
std::optional<std::string> pageText(URLClass &page, const RebuildContext &ctx);

/// Finds the references in the cached page and stores them as the page's rows of `Tags`, in place
/// of those of an earlier rebuild. The number of tags found; 0 when there are none, when the page's
/// content is gone, when cancelled, and after a failure, which is logged.
std::size_t FindTagsInFile(URLClass &page, const RebuildContext &ctx);

} // namespace nv
