#pragma once

#include <filesystem>

namespace nv::cli {

class Session;

/// Throws UsageError when no summary of an import can be written to `file`: it is there already,
/// or nothing may be written there. A project must be open.
void checkSummaryFile(Session &session, const std::filesystem::path &file, bool overwrite);

/// Writes the summary of the import that has just ended, before its project is closed. Throws
/// StorageFailure.
void writeSummaryFile(Session &session, const std::filesystem::path &file);

} // namespace nv::cli
