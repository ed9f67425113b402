#include "cli/RowContent.h"

#include "app/jobs/RecordContent.h"
#include "app/project/Project.h"
#include "cli/RowCheck.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"

#include <fmt/format.h>

namespace nv::cli {

Exit withContent(Session &session, const std::string &project, std::int64_t number,
                 const std::function<Exit(const RecordContent &)> &show) {
    session.openForReading(project);
    const UrlId urlId = checkedRow(session.program.state.projectDB.connection(), number);
    Exit exit = Exit::damagedEvidence;
    {
        RecordTools tools(session.program, session.task, session.scratch());
        const auto content = contentOfRecord(tools, urlId);
        if (content && content->file)
            exit = show(*content);
        else if (content)
            session.err << fmt::format("row {}: {}\n", urlId, printable(content->reason));
    }
    closeProject(session.program);
    return exit;
}

} // namespace nv::cli
