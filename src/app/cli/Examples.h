#pragma once

#include <span>
#include <string>
#include <string_view>

namespace nv::cli {

struct Example {
    std::string_view command; ///< as "queries save"; empty for the program as a whole
    std::string_view line;    ///< behind "norvelane-cli "
    std::string_view what;    ///< may be empty
};

/// Of all commands, those of one command together.
std::span<const Example> examples();

/// The examples of one command as its help shows them.
std::string examplesText(std::string_view command);

} // namespace nv::cli
