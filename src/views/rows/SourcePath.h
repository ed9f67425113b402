#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// The artefact file of a record where it lies today: by the name that the import kept, or below
/// the base folder that the evidence was moved to. Nothing when it isn't there.
std::optional<std::filesystem::path> sourcePathOf(const std::string &historyFile,
                                                  const std::string &root);

/// The same of a record whose artefact is a folder.
std::optional<std::filesystem::path> sourceFolderOf(const std::string &historyFile,
                                                    const std::string &root);

} // namespace nv
