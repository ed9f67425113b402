#pragma once

#include <cstddef>
#include <filesystem>

namespace nv::example {

/// Writes the disk of an invented person, Mara Quill, as an examiner would have it mounted, with a
/// file of every format. The folder must be new. The same bytes on every run.
void writeEvidence(const std::filesystem::path &folder);

/// An Internet Explorer cache index of `records` records.
void writeIndex(const std::filesystem::path &file, std::size_t records);

} // namespace nv::example
