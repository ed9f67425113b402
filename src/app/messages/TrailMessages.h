#pragma once

#include "base/Examiner.h"
#include "db/trail/TrailChain.h"
#include "maintenance/SourceCheck.h"

#include <string_view>

namespace nv::messages {

/// The work itself was done.
Message trailNotWritten(std::string_view reason);
Message sourcesVerified(const SourceCheck &check, const TrailChain &chain);

} // namespace nv::messages
