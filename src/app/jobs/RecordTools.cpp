#include "app/jobs/RecordTools.h"

namespace nv {

RebuildSettings rebuildSettings(const Program &program) {
    const ProgramState &state = program.state;
    RebuildSettings settings;
    settings.htmlReplaceablePictureTags = state.htmlReplaceablePictureTags;
    settings.htmlReplaceableHREFTags = state.htmlReplaceableHREFTags;
    settings.disableScriptTags = state.disableScriptTags;
    settings.wideRecordIds = state.wideRecordIds;
    settings.method = methodChoice(state.rebuildMethod);
    return settings;
}

RecordTools::RecordTools(Program &program, TaskMonitor &task, const std::filesystem::path &scratch)
    : m_records(program.state.projectDB.connection(),
                {program.state.gmtZone, program.state.enableDSTChanges}, program.around.clock,
                program.log),
      m_evidence(program.state.rootPath), m_context{program.state.projectDB.connection(),
                                                    m_records,
                                                    m_evidence,
                                                    scratch,
                                                    program.log,
                                                    task,
                                                    rebuildSettings(program)} {}

} // namespace nv
