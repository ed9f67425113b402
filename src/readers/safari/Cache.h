#pragma once

#include "readers/CachedBody.h"
#include "readers/Reader.h"

#include <filesystem>
#include <string_view>

namespace nv {

/// The file "Cache.db" of Safari: a record for each cached file; docs/formats/safari-cache.md.
ReadResult parseSafariCacheFile(ReadContext &ctx);

/// Writes the body of a record to `target`; see Fetch.
bool fetchSafariBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

/// Fetches the body of a saved record into the folder of `ctx`, as extractBody does. The file gets
/// the extension `fileNameSuffix`, or that of the URL.
bool extractSafariCacheFile(UrlRecord &record, std::string_view fileNameSuffix,
                            const Extraction &ctx);

} // namespace nv
