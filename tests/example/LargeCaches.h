#pragma once

#include "LargeRecords.h"

namespace nv::example {

// Large caches of today's browsers, in folders of their own names.

void largeSimpleCache(const Wanted &wanted);
void largeSqlCache(const Wanted &wanted);
void largeFirefoxCache2(const Wanted &wanted);
void largeFirefoxSiteCache(const Wanted &wanted);

} // namespace nv::example
