#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace nv {

/// `path`, which need not exist, from the root on: links are followed, "." and ".." resolved. Two
/// paths lead to the same place when these are equal, and whether one lies in the other is asked of
/// these only: std::filesystem::weakly_canonical leaves a bare name that isn't there as it is.
/// Where nothing can be found out the path stays as it is written, from the root on.
std::filesystem::path wholePath(const std::filesystem::path &path);

/// The path that textOf() showed as `text`: projects hold texts, and names on the disk need not be
/// UTF-8. Nothing when there is no such file or folder.
std::optional<std::filesystem::path> pathFromText(std::string_view text);

} // namespace nv
