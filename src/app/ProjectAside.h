#pragma once

#include <filesystem>

namespace nv {

/// Where a project that is to stand at `whole` is made: beside it, under a name that nobody has.
/// What a start that was killed left there goes first; what is no project of ours stays.
std::filesystem::path placeAside(const std::filesystem::path &whole);

/// Throws StorageFailure when rows of a project that was moved away may lie beside `whole`: they
/// would be lost with the log of another project.
void refuseLoneLog(const std::filesystem::path &whole);

} // namespace nv
