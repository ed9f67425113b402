#pragma once

#include "readers/CachedBody.h"
#include "readers/Reader.h"

#include <filesystem>
#include <string_view>

namespace nv {

/// Writes the body of a record of the Firefox cache to `target`, as it is stored.
bool fetchFirefoxCacheBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

/// The body of a stored record as a file of its own, unpacked; see extractBody() for what is set
/// in the record. False for a record that isn't stored yet and for one without a body.
bool extractFirefoxCacheFile(UrlRecord &record, std::string_view fileNameSuffix,
                             const Extraction &ctx);

} // namespace nv
