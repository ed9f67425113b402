#include "app/jobs/LinkJob.h"

namespace nv {

LinkTotals analyseLinks(Program &program, TaskMonitor &task, const std::filesystem::path &scratch) {
    ProgramState &state = program.state;
    SQLite::Database &project = state.projectDB.connection();
    RecordStore records(project, {state.gmtZone, state.enableDSTChanges}, program.around.clock,
                        program.log);
    const Evidence evidence(state.rootPath);
    return runLinkAnalysis({project, records, evidence, scratch, program.log, task});
}

LinkList linksOf(Program &program, UrlId urlID) {
    const RecordIds ids = program.state.wideRecordIds ? RecordIds::wide : RecordIds::narrow;
    return loadLinks(program.state.projectDB.connection(), urlID, ids, program.log);
}

} // namespace nv
