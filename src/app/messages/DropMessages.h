#pragma once

#include "base/Examiner.h"

#include <filesystem>
#include <string_view>

namespace nv::messages {

/// `things` is a line each, with the reason.
Message droppedNotTaken(std::string_view things);
/// Of several places that an import begins at, this one isn't there.
Message evidenceGone(const std::filesystem::path &place);

} // namespace nv::messages
