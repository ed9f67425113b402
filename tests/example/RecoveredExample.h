#pragma once

#include <filesystem>

namespace nv::example {

/// What an examiner recovered of this user's browsing, in the folder "Recovered": records carved
/// from unallocated space, a results file of the companion script, and two loose pages.
void writeRecoveredExample(const std::filesystem::path &userFolder);

} // namespace nv::example
