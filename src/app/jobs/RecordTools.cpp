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
    : RecordTools(program,
                  {program.state.projectDB.connection(), program.state.gmtZone, program.log}, task,
                  scratch) {}

RecordTools::RecordTools(Program &program, const RecordsFrom &from, TaskMonitor &task,
                         const std::filesystem::path &scratch)
    : m_records(from.project, {from.zone, program.state.enableDSTChanges}, program.around.clock,
                from.log),
      m_evidence(program.state.rootPath), m_context{from.project,
                                                    m_records,
                                                    m_evidence,
                                                    scratch,
                                                    from.log,
                                                    task,
                                                    rebuildSettings(program)} {}

} // namespace nv
