#include "app/jobs/ExplainJob.h"

#include "app/project/Project.h"

namespace nv {

std::optional<RecordOrigin> explainInProject(Program &program, const RecordTools &tools, UrlId id,
                                             const std::string &field) {
    const RebuildContext &context = tools.context();
    Explainer explainer({context.project, context.records, context.evidence, context.tempFolderPath,
                         program.state.gmtZone, dateSettings(program), program.log});
    return explainer.explain(id, field);
}

} // namespace nv
