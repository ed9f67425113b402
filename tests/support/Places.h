#pragma once

#include <filesystem>

namespace nv::test {

// Where this build has what tests read. The paths are compiled into one file only: every other
// object is the same in each clone, so that the compiler's cache serves it.

/// "tests/golden".
std::filesystem::path goldenFolder();
/// "tests/support/site".
std::filesystem::path siteFolder();
/// "docs".
std::filesystem::path docsFolder();
std::filesystem::path readmeFile();
/// The made "nvTZ.dat".
std::filesystem::path timeZonesFile();
/// The made "norvelane-cli"; the other programs lie beside it.
std::filesystem::path cliProgram();
/// The manual page that the build writes.
std::filesystem::path manualFile();

} // namespace nv::test
