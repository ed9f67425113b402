#pragma once

#include "readers/CachedBody.h"

#include <filesystem>
#include <string_view>

namespace nv {

/// Writes the body of a record of parseChromeCache, as it is stored, to `target`. A stored row is
/// enough for it. Throws EvidenceFailure.
bool fetchChromeBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
