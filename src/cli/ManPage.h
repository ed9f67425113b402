#pragma once

#include "cli/Command.h"

#include <span>
#include <string>

namespace nv::cli {

/// The manual page of the command line as troff: every command of the table with its words and
/// options, so that the page can't fall behind. `date` is shown at its foot.
std::string manPageOf(std::span<const MakeCommand> table, const std::string &version,
                      const std::string &date);

} // namespace nv::cli
