#pragma once

#include "readers/Reader.h"
#include "readers/json/JsonWalk.h"

#include <functional>
#include <string_view>

namespace nv {

/// What a walk through a file of JSON means for its reading: complete, cancelled, cut short, or
/// failed where nothing was found before the damage.
ReadResult jsonResult(const JsonEnd &end, bool foundAnything, ReadContext &ctx,
                      std::string_view procedure);

/// As readWholeFile(); a file that no browser makes so large fails, with a result that says why.
ReadResult readJsonFile(ReadContext &ctx, TaskHeading heading, std::string_view procedure,
                        const std::function<ReadResult(ByteView)> &read);

} // namespace nv
