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

std::optional<SourcePlace> sourceInProject(Program &program, const RecordTools &tools, UrlId id,
                                           const UrlRecord &record) {
    if (auto source = sourceOfRecord(record))
        return source;
    const auto address = explainValueInProject(program, tools, id, "URL");
    if (!address || !address->offset || address->file.empty())
        return std::nullopt;
    return SourcePlace{address->file, *address->offset};
}

} // namespace nv
