#pragma once

#include "support/builders/WebSite.h"
#include "support/builders/site/MadeSite.h"

#include <cstdint>
#include <filesystem>

namespace nv::test {

// What browsers of today keep of the made site. A page is opened 97 s after the one before, and a
// part fetched 40 ms after the one before. `folder` is the cache's own and is made; `begun` is in
// seconds since 1970.

inline constexpr std::int64_t kPageSeconds = 97;

enum class LaterCache { simple, blocks, sql, cache2 };

void writeSite(const MadeSite &site, LaterCache cache, const std::filesystem::path &folder,
               std::int64_t begun);

/// For the writers of the first browsers' caches, which keep neither errors nor charsets of servers
/// nor codings but gzip. Of their days, the site is one of "http:".
WebSite asWebSite(const MadeSite &site);

} // namespace nv::test
