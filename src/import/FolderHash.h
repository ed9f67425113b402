#pragma once

#include "base/Digest.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace nv {

/// What tells whether a folder still holds what was examined: the digests of a list of its files,
/// those of the folders below included, in the order of their names' bytes, a line for each: its
/// own digest, two blanks, its name from the folder on. So `md5sum` and `sha256sum` can make it
/// too. Links are no files. The size is the sum of the files'. `goOn` is told the bytes read so
/// far; false ends the reading and gives nothing. Throws FileFailure.
std::optional<FileHashes> hashesOfFolder(const std::filesystem::path &folder,
                                         const std::function<bool(std::uint64_t)> &goOn = {});

} // namespace nv
