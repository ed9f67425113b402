#pragma once

#include <filesystem>

namespace nv::example {

/// Writes the cache of Internet Explorer for Macintosh, copied to Mara Quill's disk from an older
/// machine. The same bytes on every run.
void writeMacCacheExample(const std::filesystem::path &userFolder);

} // namespace nv::example
