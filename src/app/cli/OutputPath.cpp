#include "app/cli/OutputPath.h"

#include "app/Messages.h"
#include "app/cli/Session.h"
#include "readers/Evidence.h"

namespace nv::cli {

void refuseEvidence(const std::filesystem::path &path, const std::filesystem::path &base) {
    if (liesInEvidence(path, base))
        throw UsageError(messages::liesInEvidence(path, base).text);
}

} // namespace nv::cli
