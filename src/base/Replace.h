#pragma once

#include <filesystem>

namespace nv {

/// Puts the finished file `whole` in the place of `to`, in the same folder, so that whatever
/// happens either the old or the new file is there, whole and on the disk. Throws StorageFailure.
void replaceDurably(const std::filesystem::path &whole, const std::filesystem::path &to);

} // namespace nv
