#include "app/RecordTools.h"

namespace nv {

RebuildSettings rebuildSettings(const Program &program) {
    const ThisClass &state = program.thisClass;
    RebuildSettings settings;
    settings.HTMLReplaceablePictureTags = state.HTMLReplaceablePictureTags;
    settings.HTMLReplaceableHREFTags = state.HTMLReplaceableHREFTags;
    settings.DisableScriptTags = state.DisableScriptTags;
    settings.WideRecordIds = state.WideRecordIds;
    return settings;
}

RecordTools::RecordTools(Program &program, TaskMonitor &task, const std::filesystem::path &scratch)
    : m_records(program.thisClass.ProjectDB.connection(),
                {program.thisClass.GMTZone, program.thisClass.EnableDSTChanges},
                program.around.clock, program.log),
      m_evidence(program.thisClass.RootPath), m_context{program.thisClass.ProjectDB.connection(),
                                                        m_records,
                                                        m_evidence,
                                                        scratch,
                                                        program.log,
                                                        task,
                                                        rebuildSettings(program)} {}

} // namespace nv
