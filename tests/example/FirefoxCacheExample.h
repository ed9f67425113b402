#pragma once

#include <filesystem>

namespace nv::example {

/// Mara Quill's Firefox cache below her folder "Documents and Settings/mara": pages with their
/// pictures, stylesheet and script, a packed page, a film too large for the block files, and an
/// entry whose separate file is gone. The same bytes on every run.
void writeFirefoxCacheExample(const std::filesystem::path &userFolder);

} // namespace nv::example
