#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace nv::example {

/// Writes an artefact of `records` records, of the format with this key, below the new folder, to
/// measure readers with. Caches get bodies of `bodyBytes` bytes. Throws std::invalid_argument for a
/// key that it doesn't know.
void writeLarge(std::string_view key, std::size_t records, std::size_t bodyBytes,
                const std::filesystem::path &folder);

} // namespace nv::example
