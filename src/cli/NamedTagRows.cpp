#include "cli/NamedTagRows.h"

#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "cli/UsageError.h"
#include "db/NamedTags.h"

#include <fmt/format.h>

namespace nv::cli {

Argument tagOption(std::string &tag) {
    return value("--tag", tag, "Only rows with a tag of this name");
}

NamedTag namedTag(SQLite::Database &project, const std::string &name) {
    auto tag = NamedTags(project).find(name);
    if (!tag)
        throw UsageError(
            fmt::format("the project has no tag \"{}\": `tags` lists them", printable(name)));
    return std::move(*tag);
}

void limitToTag(Session &session, const std::string &tag, UrlTable &table) {
    if (tag.empty())
        return;
    const NamedTag known = namedTag(session.program.state.projectDB.connection(), tag);
    table.tags = TagLimit{{known.tagID}, false};
}

} // namespace nv::cli
