#pragma once

#include "readers/Reader.h"

#include <filesystem>
#include <optional>

namespace nv {

/// A case file of NetAnalysis: a Jet database whose table `History` has one row an event.
ReadResult parseNetAnalysisFile(ReadContext &ctx);

/// The same with the program that reads Jet databases given; nothing when it is missing.
ReadResult readNetAnalysisFile(ReadContext &ctx,
                               const std::optional<std::filesystem::path> &program);

} // namespace nv
