#include "cli/LayoutColumns.h"

#include "app/project/Project.h"
#include "cli/Session.h"
#include "cli/UsageError.h"
#include "db/project/ProjectFields.h"
#include "views/table/LayoutBook.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace nv::cli {

std::vector<UrlColumn> columnsOfLayout(Session &session, const std::string &name) {
    Program &program = session.program;
    const ProjectFields fields(program.state.projectDB.connection(), program.log);
    LayoutBook book;
    book.restore([&fields](std::string_view setting) { return fields.getDefault(setting); });
    if (!book.choose(name))
        throw UsageError(fmt::format("the project has no layout \"{}\": {} were expected", name,
                                     fmt::join(book.names(), ", ")));
    return book.layout().shownColumns();
}

} // namespace nv::cli
