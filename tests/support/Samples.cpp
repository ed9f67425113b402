#include "support/Samples.h"

#include <cstdlib>

namespace nv::test {

std::optional<std::filesystem::path> samplesFolder() {
    const char *named = std::getenv("NV_SAMPLES");
    const std::filesystem::path folder = named ? named : NV_SAMPLES_DIR;
    return std::filesystem::is_directory(folder) ? std::optional(std::filesystem::canonical(folder))
                                                 : std::nullopt;
}

} // namespace nv::test
