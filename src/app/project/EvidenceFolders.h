#pragma once

#include "app/program/Program.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace nv {

// A project may be made of several folders of evidence, of which only one is its base folder.

/// Where nothing is ever written: the base folder of the open project and the folders that its
/// imports have read. Throws StorageFailure.
std::vector<std::filesystem::path> evidenceFolders(ProgramState &state);

/// The first of them in which `path`, which need not exist, lies. Throws StorageFailure.
std::optional<std::filesystem::path> evidenceAround(const std::filesystem::path &path,
                                                    ProgramState &state);

/// Keeps in the open project what is about to be imported: a folder, or the one that holds a file.
/// A folder in which the project lies itself is none of evidence alone and isn't kept. Throws
/// StorageFailure when it can't be kept: nobody could tell later where nothing may be written.
void keepEvidenceFolder(Program &program, const std::filesystem::path &source);

/// The deepest folder that holds all of these folders and files, links followed; empty for none.
/// Throws std::filesystem::filesystem_error for one that isn't there.
std::filesystem::path commonFolder(const std::vector<std::filesystem::path> &places);

} // namespace nv
