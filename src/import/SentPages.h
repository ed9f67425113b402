#pragma once

#include "db/records/UrlRecord.h"
#include "readers/ContentProbe.h"

namespace nv {

/// Whether it is one of the caches of today's browsers, which tell in what layout they lie.
bool isOfTodaysCache(const UrlRecord &record);

/// Whether the content of a record of such a cache is a page because its server sent it as one:
/// type text/html or application/xhtml+xml, no other status than 2xx, and no first bytes of
/// something else. Many pages of today have neither "<html" nor "<body". Other caches go by tags
/// alone, as earlier cases were counted.
bool isSentAsPage(const UrlRecord &record, const ContentFacts &facts);

} // namespace nv
