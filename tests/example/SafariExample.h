#pragma once

#include <filesystem>

namespace nv::example {

/// Mara Quill's Safari below her folder "Documents and Settings/mara": its cache with pages and
/// pictures, and its history. The same bytes on every run.
void writeSafariExample(const std::filesystem::path &userFolder);

} // namespace nv::example
