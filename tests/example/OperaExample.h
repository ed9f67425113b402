#pragma once

#include <filesystem>

namespace nv::example {

/// Writes cache, history and typed addresses of an Opera below the folder of a user.
void writeOperaExample(const std::filesystem::path &userFolder);

} // namespace nv::example
