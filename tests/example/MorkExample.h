#pragma once

#include <filesystem>

namespace nv::example {

/// Writes the history of an old Firefox below the folder of a user.
void writeMorkExample(const std::filesystem::path &userFolder);

} // namespace nv::example
