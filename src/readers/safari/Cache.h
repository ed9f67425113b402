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

} // namespace nv
