#include "app/cli/OutputPath.h"

#include "app/cli/Session.h"
#include "base/Files.h"
#include "readers/Evidence.h"

#include <fmt/format.h>

namespace nv::cli {

void refuseEvidence(const std::filesystem::path &path, const std::filesystem::path &base) {
    if (liesInEvidence(path, base))
        throw UsageError(fmt::format("\"{}\" lies in the evidence folder {}: nothing is written "
                                     "there",
                                     textOf(path), textOf(base)));
}

} // namespace nv::cli
