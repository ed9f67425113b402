#pragma once

#include <filesystem>

namespace nv::example {

/// Chrome's block cache below a user's folder: pages, a packed script, pictures, an entry whose
/// separate file is gone, and one that shares a slot. The same bytes on every run.
void writeChromeCacheExample(const std::filesystem::path &userFolder);

} // namespace nv::example
