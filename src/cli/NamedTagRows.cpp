#include "cli/NamedTagRows.h"

#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "cli/UsageError.h"
#include "db/marks/NamedTags.h"

#include <fmt/format.h>

#include <utility>

namespace nv::cli {

Argument tagOption(std::string &tag) {
    return value("--tag", tag, "Only rows with a tag of this name");
}

Argument tagsOption(std::vector<std::string> &tags) {
    return value("--tag", tags,
                 "Only rows with a tag of this name; said for several, with one or more of them")
        .saidForEach();
}

NamedTag namedTag(SQLite::Database &project, const std::string &name) {
    auto tag = NamedTags(project).find(name);
    if (!tag)
        throw UsageError(
            fmt::format("the project has no tag \"{}\": `tags` lists them", printable(name)));
    return std::move(*tag);
}

void limitToTags(Session &session, const std::vector<std::string> &tags, UrlTable &table) {
    if (tags.empty())
        return;
    TagLimit limit;
    limit.tagIDs.reserve(tags.size());
    for (const std::string &tag : tags)
        limit.tagIDs.push_back(namedTag(session.program.state.projectDB.connection(), tag).tagID);
    table.tags = std::move(limit);
}

} // namespace nv::cli
