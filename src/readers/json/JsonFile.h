#pragma once

#include "readers/Reader.h"
#include "readers/json/JsonWalk.h"

#include <string_view>

namespace nv {

/// What a walk through a file of JSON means for its reading: complete, cancelled, cut short, or
/// failed where nothing was found before the damage.
ReadResult jsonResult(const JsonEnd &end, bool foundAnything, ReadContext &ctx,
                      std::string_view procedure);

/// False, and a result that says why, for a file that no browser makes so large.
bool isJsonSize(ReadContext &ctx, std::string_view procedure, ReadResult &result);

} // namespace nv
