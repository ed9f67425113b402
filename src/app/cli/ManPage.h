#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace nv::cli {

/// The manual page of the command line as troff: every command with its words and options as `app`
/// knows them, so that the page can't fall behind. `date` is shown at its foot.
std::string manPageOf(const CLI::App &app, const std::string &version, const std::string &date);

} // namespace nv::cli
