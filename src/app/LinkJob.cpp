#include "app/LinkJob.h"

namespace nv {

LinkTotals analyseLinks(Program &program, TaskMonitor &task, const std::filesystem::path &scratch) {
    ThisClass &state = program.thisClass;
    SQLite::Database &project = state.ProjectDB.connection();
    RecordStore records(project, {state.GMTZone, state.EnableDSTChanges}, program.around.clock,
                        program.log);
    const Evidence evidence(state.RootPath);
    return runLinkAnalysis({project, records, evidence, scratch, program.log, task});
}

LinkList linksOf(Program &program, UrlId URL_ID) {
    const RecordIds ids = program.thisClass.WideRecordIds ? RecordIds::wide : RecordIds::narrow;
    return loadLinks(program.thisClass.ProjectDB.connection(), URL_ID, ids, program.log);
}

} // namespace nv
