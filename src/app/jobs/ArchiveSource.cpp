#include "app/jobs/ArchiveSource.h"

namespace nv {

WarcSource warcSource(const Program &program, const RecordTools &tools) {
    return {.records = tools.context(),
            .software = program.state.appTitle + ' ' + program.state.appVersion,
            .now = Date::fromTimePoint(program.around.clock.now())};
}

} // namespace nv
