#include "app/jobs/ExplainJob.h"

#include "app/project/Project.h"

namespace nv {

namespace {

ExplainSource sourceOf(Program &program, const RecordTools &tools) {
    const RebuildContext &context = tools.context();
    return {context.project,       context.records,       context.evidence, context.tempFolderPath,
            program.state.gmtZone, dateSettings(program), program.log,      true};
}

} // namespace

std::optional<RecordOrigin> explainInProject(Program &program, const RecordTools &tools, UrlId id,
                                             const std::string &field) {
    return Explainer(sourceOf(program, tools)).explain(id, field);
}

std::optional<ValueOrigin> explainValueInProject(Program &program, const RecordTools &tools,
                                                 UrlId id, const std::string &field) {
    return Explainer(sourceOf(program, tools)).explainValue(id, field);
}

} // namespace nv
