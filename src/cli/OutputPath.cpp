#include "cli/OutputPath.h"

#include "app/messages/Messages.h"
#include "app/project/EvidenceFolders.h"
#include "cli/Session.h"
#include "readers/Evidence.h"
#include "reports/exports/ExportFile.h"

namespace nv::cli {

void refuseUntouchable(const std::filesystem::path &file, ProgramState &state) {
    if (const auto refusal = refusalOf(file, {state.projectDBPath, evidenceFolders(state)}))
        throw UsageError(*refusal);
}

void refuseEvidence(const std::filesystem::path &path, ProgramState &state) {
    if (const auto folder = evidenceAround(path, state))
        throw UsageError(messages::liesInEvidence(path, *folder).text);
}

void refuseEvidence(const std::filesystem::path &path, const std::filesystem::path &base) {
    if (liesInEvidence(path, base))
        throw UsageError(messages::liesInEvidence(path, base).text);
}

} // namespace nv::cli
