#include "cli/OutputPath.h"

#include "app/EvidenceFolders.h"
#include "app/Messages.h"
#include "cli/Session.h"
#include "readers/Evidence.h"
#include "reports/ExportFile.h"

namespace nv::cli {

void refuseUntouchable(const std::filesystem::path &file, ThisClass &state) {
    if (const auto refusal = refusalOf(file, {state.ProjectDBPath, evidenceFolders(state)}))
        throw UsageError(*refusal);
}

void refuseEvidence(const std::filesystem::path &path, ThisClass &state) {
    if (const auto folder = evidenceAround(path, state))
        throw UsageError(messages::liesInEvidence(path, *folder).text);
}

void refuseEvidence(const std::filesystem::path &path, const std::filesystem::path &base) {
    if (liesInEvidence(path, base))
        throw UsageError(messages::liesInEvidence(path, base).text);
}

} // namespace nv::cli
