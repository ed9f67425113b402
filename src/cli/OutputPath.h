#pragma once

#include <filesystem>

namespace nv {
struct ThisClass;
}

namespace nv::cli {

/// Throws UsageError when `file`, where a single file is about to be written, is the project or
/// bears the name of one, lies in its evidence or is no plain file.
void refuseUntouchable(const std::filesystem::path &file, ThisClass &state);

/// Throws UsageError when `path`, where something is about to be written, lies in any evidence of
/// the open project.
void refuseEvidence(const std::filesystem::path &path, ThisClass &state);
/// The same for the evidence below `base`. An empty base and "/" are no evidence folder.
void refuseEvidence(const std::filesystem::path &path, const std::filesystem::path &base);

} // namespace nv::cli
