#pragma once

#include "app/cli/Exit.h"
#include "app/cli/RowWriter.h"
#include "app/cli/Session.h"

#include <string>

namespace nv::cli {

/// What was done with the project.
Exit trailCommand(Session &session, const std::string &project, Format format);
/// Hashes the project's source files again. `Exit::damaged` when one has changed or is gone.
Exit verifyCommand(Session &session, const std::string &project, Format format);

} // namespace nv::cli
