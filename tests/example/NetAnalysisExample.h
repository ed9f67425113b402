#pragma once

#include <filesystem>

namespace nv::example {

/// Writes "My Documents/harbour.net" below Mara Quill's folder, a NetAnalysis case file about her
/// history, with the pages that the case exported. The same bytes on every run.
void writeNetAnalysisExample(const std::filesystem::path &userFolder);

} // namespace nv::example
