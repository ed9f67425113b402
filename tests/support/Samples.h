#pragma once

#include <filesystem>
#include <optional>

namespace nv::test {

/// The folder of real artefacts with expected facts: the environment's NV_SAMPLES, otherwise
/// "shared/samples" beside the source folder. Nothing where it is absent: such tests skip.
std::optional<std::filesystem::path> samplesFolder();

/// The folder of the standards' own cases: the environment's NV_STANDARDS, otherwise
/// "shared/standards" beside the source folder. Nothing where it is absent: such tests skip.
std::optional<std::filesystem::path> standardsFolder();

} // namespace nv::test
