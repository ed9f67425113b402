#include "cli/ReadProject.h"

#include "app/Messages.h"
#include "app/Project.h"
#include "base/Files.h"
#include "cli/Session.h"
#include "db/ReadOnlyConnection.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

namespace nv::cli {

std::unique_ptr<SQLite::Database> readProject(const std::string &project) {
    if (!isProjectName(project))
        throw StorageFailure(fmt::format("\"{}\": {}", project, messages::notAProjectFile().text));
    return openReadOnly(project);
}

StatementCells cellsOf(Session &session, SQLite::Statement &statement, Format format) {
    const ThisClass &state = session.program.thisClass;
    const bool people = format == Format::table;
    return {statement,
            people ? StatementCells::For::people : StatementCells::For::programs,
            {state.DateFormat, state.TimeFormat, state.EnableDSTChanges, 0}};
}

} // namespace nv::cli
