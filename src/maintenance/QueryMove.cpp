#include "maintenance/QueryMove.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/project/StoredQueries.h"
#include "db/sql/Dialect.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

void dropViews(SQLite::Database &project) {
    std::vector<std::string> views;
    SQLite::Statement rows(project, "SELECT name FROM sqlite_master WHERE type = 'view'");
    while (rows.executeStep())
        views.push_back(rows.getColumn(0).getString());
    rows.reset();
    for (const std::string &view : views)
        project.exec("DROP VIEW " + quotedName(view));
}

/// True when at least one view more could be made; `waiting` keeps the others.
bool makeSome(StoredQueries &queries, std::vector<StoredQuery> &waiting) {
    NoLog unheard; // it may be for want of a query that comes later
    const std::size_t before = waiting.size();
    std::erase_if(waiting, [&](const StoredQuery &query) {
        return !failureOf(unheard, {}, [&] { queries.save(query); });
    });
    return waiting.size() < before;
}

} // namespace

void remakeViews(SQLite::Database &project, FailureLog &log, std::vector<std::string> &notes) {
    dropViews(project);
    StoredQueries queries(project);
    std::vector<StoredQuery> waiting = queries.list();
    while (makeSome(queries, waiting)) {
    }
    for (const StoredQuery &query : waiting) {
        const auto why =
            failureOf(log, "UpgradeWizardForm.FixBtn_Click()", [&] { queries.save(query); });
        notes.push_back(fmt::format("The stored query \"{}\" keeps its text but can't run: {}",
                                    query.name, why.value_or("")));
    }
    if (std::ranges::find(waiting, std::string(kDefaultQueryName), &StoredQuery::name) !=
            waiting.end() ||
        !queries.text(kDefaultQueryName))
        queries.resetDEFAULTQuery();
}

} // namespace nv
