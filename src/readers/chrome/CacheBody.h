#pragma once

#include "readers/CachedBody.h"

#include <filesystem>
#include <string_view>

namespace nv {

/// Writes the body of a record of ParseChromeCache, as it is stored, to `target`. A stored row is
/// enough for it. Throws EvidenceFailure.
bool fetchChromeBody(const URLClass &record, const Evidence &evidence, BodyTarget &target);

/// Brings the body of a stored record into the folder of `ctx`, unpacked, as extractBody() does.
/// False, with nothing changed but `RunTimeTempFilePath`, when there is none.
bool ExtractChromeCacheFile(URLClass &record, std::string_view fileNameSuffix,
                            const Extraction &ctx);

} // namespace nv
