#include "cli/ImportSummaryFile.h"

#include "app/jobs/ImportPageJob.h"
#include "base/Files.h"
#include "cli/Session.h"
#include "cli/UsageError.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

void checkSummaryFile(Session &session, const fs::path &file, bool overwrite) {
    if (const auto refusal = refusalOfImportPage(file, session.program.state))
        throw UsageError(*refusal);
    if (fs::exists(file) && !overwrite)
        throw UsageError(fmt::format("\"{}\" is there already", textOf(file)));
}

void writeSummaryFile(Session &session, const fs::path &file) {
    Program &program = session.program;
    ImportOverview overview;
    const Walk walk = loadImportOverview(program.state.projectDB.connection(), ImportScope::last,
                                         session.task, overview);
    session.task.clear();
    if (walk == Walk::Finished)
        saveImportPage(program, overview, file);
}

} // namespace nv::cli
