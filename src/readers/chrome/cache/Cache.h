#pragma once

#include "db/records/UrlRecord.h"
#include "readers/Reader.h"
#include "readers/chrome/cache/CacheRecords.h"

namespace nv {

/// Reads the block cache whose index is the file of `ctx`; docs/formats/chrome-cache.md. Failures
/// are trapped: they stand in the log and in the result.
ReadResult parseChromeCache(ReadContext &ctx);

/// The record of an entry that has a header. `ctx.file` is the index.
UrlRecord parseChromeCacheURL(const ChromeEntry &entry, const ReadContext &ctx);

} // namespace nv
