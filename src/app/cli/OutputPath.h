#pragma once

#include <filesystem>

namespace nv::cli {

/// Throws UsageError when `path`, where something is about to be written, lies in the evidence
/// below `base`. An empty base and "/" are no evidence folder.
void refuseEvidence(const std::filesystem::path &path, const std::filesystem::path &base);

} // namespace nv::cli
