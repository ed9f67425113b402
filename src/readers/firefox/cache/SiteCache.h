#pragma once

#include "readers/Reader.h"

namespace nv {

class BodyTarget;

/// Reads a "caches.sqlite" with the folder "morgue" beside it; docs/formats/firefox-site-cache.md.
ReadResult parseFirefoxSiteCache(ReadContext &ctx);

/// Writes the body of such a record to `target`, out of Snappy's frames.
bool fetchFirefoxSiteBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
