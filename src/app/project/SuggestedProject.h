#pragma once

#include "app/program/Program.h"

#include <filesystem>
#include <vector>

namespace nv {

/// Where projects are offered to lie: the folder of the settings, that of the last project, or the
/// user's own.
std::filesystem::path folderOfProjects(const Program &program);

/// A file for the project of this evidence, which isn't there yet: called after the evidence and
/// today, "ada 2026-11-22.nvp". It lies beside the evidence where the user may write there and the
/// evidence is on the disk of the user's own files, as a mounted one is to stay as it is; else in
/// the folder of projects. Never among the evidence; empty where no such folder can be written.
std::filesystem::path suggestedProject(const Program &program,
                                       const std::vector<std::filesystem::path> &evidence);

} // namespace nv
