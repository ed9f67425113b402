#pragma once

#include "readers/CachedBody.h"
#include "readers/Reader.h"

#include <filesystem>
#include <string_view>

namespace nv {

/// Writes the body of a record of the Firefox cache to `target`, as it is stored.
bool fetchFirefoxCacheBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
