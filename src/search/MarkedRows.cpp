#include "search/MarkedRows.h"

#include "db/hashes/FoundHashSets.h"
#include "db/marks/RecordTags.h"
#include "search/FoldedText.h"

#include <SQLiteCpp/Database.h>

#include <utility>

namespace nv {

namespace {

FoundIds tagged(SQLite::Database &project, const std::string &name) {
    const std::string asked = foldedCase(name);
    FoundIds rows;
    for (const NamedTag &tag : NamedTags(project).list())
        if (asked == "*" || foldedCase(tag.name) == asked)
            rows = eitherOf(rows, RecordTags(project).rowsOf(tag.tagID));
    return rows;
}

FoundIds inHashSets(SQLite::Database &project, const std::string &name) {
    const std::string asked = foldedCase(name);
    FoundIds rows;
    for (const FoundHashSet &set : foundHashSets(project))
        if (asked == "*" || asked == wordOf(set.meaning) || foldedCase(set.name) == asked)
            rows = eitherOf(rows, rowsOf(project, set));
    return rows;
}

} // namespace

void takeMarks(SQLite::Database &project, RowMatch &match) {
    for (std::size_t at = 0; at < match.query().clauses.size(); ++at) {
        const SearchClause &clause = match.query().clauses[at];
        if (clause.kind == ClauseKind::tag)
            match.setMarked(at, tagged(project, clause.text));
        else if (clause.kind == ClauseKind::hashSet)
            match.setMarked(at, inHashSets(project, clause.text));
    }
}

} // namespace nv
