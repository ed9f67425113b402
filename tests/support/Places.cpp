#include "support/Places.h"

namespace nv::test {

namespace fs = std::filesystem;

namespace {

const fs::path kSources = NV_SOURCE_DIR;
const fs::path kBuild = NV_BUILD_DIR;

} // namespace

fs::path goldenFolder() {
    return kSources / "tests" / "golden";
}

fs::path siteFolder() {
    return kSources / "tests" / "support" / "site";
}

fs::path docsFolder() {
    return kSources / "docs";
}

fs::path readmeFile() {
    return kSources / "README.md";
}

fs::path timeZonesFile() {
    return kBuild / "nvTZ.dat";
}

fs::path cliProgram() {
    return kBuild / "norvelane-cli";
}

fs::path manualFile() {
    return kBuild / "norvelane-cli.1";
}

} // namespace nv::test
