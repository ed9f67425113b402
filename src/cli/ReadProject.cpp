#include "cli/ReadProject.h"

#include "app/messages/Messages.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "cli/Session.h"
#include "db/sql/ReadOnlyConnection.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

namespace nv::cli {

std::unique_ptr<SQLite::Database> readProject(const std::string &project) {
    if (!isProjectName(project))
        throw StorageFailure(fmt::format("\"{}\": {}", project, messages::notAProjectFile().text));
    return openReadOnly(project);
}

StatementCells cellsOf(Session &session, SQLite::Statement &statement, Format format) {
    const ProgramState &state = session.program.state;
    const bool people = format == Format::table;
    return {statement,
            people ? StatementCells::For::people : StatementCells::For::programs,
            {state.dateFormat, state.timeFormat, state.enableDSTChanges, 0}};
}

} // namespace nv::cli
