#include "support/Samples.h"

#include <cstdlib>

namespace nv::test {

namespace {

std::optional<std::filesystem::path> folderOf(const char *variable, const char *otherwise) {
    const char *named = std::getenv(variable);
    const std::filesystem::path folder = named ? named : otherwise;
    return std::filesystem::is_directory(folder) ? std::optional(std::filesystem::canonical(folder))
                                                 : std::nullopt;
}

} // namespace

std::optional<std::filesystem::path> samplesFolder() {
    return folderOf("NV_SAMPLES", NV_SOURCE_DIR "/../shared/samples");
}

std::optional<std::filesystem::path> standardsFolder() {
    return folderOf("NV_STANDARDS", NV_SOURCE_DIR "/../shared/standards");
}

} // namespace nv::test
