#include "search/TaggedRows.h"

#include "db/RecordTags.h"
#include "search/FoldedText.h"

#include <SQLiteCpp/Database.h>

#include <utility>

namespace nv {

namespace {

FoundIds rowsWith(SQLite::Database &project, const std::string &name) {
    const std::string asked = foldedCase(name);
    FoundIds rows;
    for (const NamedTag &tag : NamedTags(project).list())
        if (asked == "*" || foldedCase(tag.name) == asked)
            rows = eitherOf(rows, RecordTags(project).rowsOf(tag.tagID));
    return rows;
}

} // namespace

void takeTags(SQLite::Database &project, RowMatch &match) {
    for (std::size_t at = 0; at < match.query().clauses.size(); ++at)
        if (match.query().clauses[at].kind == ClauseKind::tag)
            match.setTagged(at, rowsWith(project, match.query().clauses[at].text));
}

} // namespace nv
