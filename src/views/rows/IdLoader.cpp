#include "views/rows/IdLoader.h"

#include "base/NoLog.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/Damage.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/sql/RowWalk.h"
#include "readers/RecordKind.h"
#include "search/FoundIds.h"
#include "views/rows/DamagedList.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace nv {
namespace {

std::int32_t idIn(const SQLite::Column &column) {
    if (!column.isInteger())
        throw std::runtime_error("a row of the query has no URL_ID");
    const std::int64_t id = column.getInt64();
    if (id < std::numeric_limits<std::int32_t>::min() ||
        id > std::numeric_limits<std::int32_t>::max())
        throw std::runtime_error(fmt::format("URL_ID {} is beyond 2147483647", id));
    return static_cast<std::int32_t>(id);
}

void showProgress(TaskMonitor &task, std::size_t done, std::size_t total) {
    if (!task.wantsStep())
        return;
    TaskStep step;
    step.topMessage = "Validating and Loading Records ";
    step.topCounter = static_cast<std::int64_t>(done);
    step.topTotal = static_cast<std::int64_t>(total);
    step.bottomMessage = fmt::format("URL {} of {}", done, total);
    task.show(step);
}

/// The rows from an id on with the columns that `filters` look at, in the order of factsIn(); one
/// that isn't needed is no column, so that its page need not be read.
std::string factsQuery(const RecordFilters &filters) {
    const FilterNeeds needs = needsOf(filters);
    return fmt::format(
        "SELECT URL_ID, IsHistory, IsCookie, IsBookmark, CacheType, {}, {}, {}, {} FROM URLs "
        "WHERE URL_ID >= ? ORDER BY URL_ID",
        needs.category ? "Category" : "NULL", needs.urlFileExt ? "URLFileExt" : "NULL",
        needs.url ? "URL" : "NULL", needs.origin ? "Browser, Profile, Person" : "NULL, NULL, NULL");
}

std::string_view textIn(const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    return {bytes, static_cast<std::size_t>(column.getBytes())};
}

FilterFacts factsIn(SQLite::Statement &row) {
    FilterFacts facts;
    facts.isHistory = row.getColumn(1).getInt() != 0;
    facts.isCookie = row.getColumn(2).getInt() != 0;
    facts.isBookmark = row.getColumn(3).getInt() != 0;
    facts.isCache = groupOf(textIn(row.getColumn(4))) == RecordGroup::cache;
    facts.category = toUpper(textIn(row.getColumn(5)));
    facts.urlFileExt = textIn(row.getColumn(6));
    facts.url = toLower(textIn(row.getColumn(7)));
    facts.browser = textIn(row.getColumn(8));
    facts.profile = textIn(row.getColumn(9));
    facts.person = textIn(row.getColumn(10));
    return facts;
}

/// Those of `sorted` that the filters admit, which are sorted too.
Walk admittedIds(SQLite::Database &database, const RowIds &sorted, const RecordFilters &filters,
                 TaskMonitor &task, RowIds &admitted) {
    SQLite::Statement rows(database, factsQuery(filters));
    RowWalk walk(rows);
    NoLog unheard; // whoever looks at the row logs its damage
    std::size_t done = 0;
    for (const std::int32_t id : sorted) {
        if (!task.advance(static_cast<double>(done) / static_cast<double>(sorted.size())))
            return Walk::Cancelled;
        const bool admits = trapped(unheard, Severity::Low, {}, {}, true, [&] {
            return walk.goTo(id) && filterRecord(filters, factsIn(rows));
        });
        if (admits)
            admitted.push_back(id);
        showProgress(task, ++done, sorted.size());
    }
    return Walk::Finished;
}

} // namespace

bool canRun(SQLite::Database &database, const IdQuery &query) {
    sqlite3_stmt *statement = nullptr;
    const int answer = sqlite3_prepare_v2(database.getHandle(), query.sql.c_str(),
                                          static_cast<int>(query.sql.size()), &statement, nullptr);
    sqlite3_finalize(statement);
    return answer == SQLITE_OK;
}

Walk collectIds(SQLite::Database &database, const IdQuery &query, TaskMonitor &task, RowIds &ids) {
    constexpr std::size_t kRowsBetween = 4096;
    const ReadingOnly guard(database);
    SQLite::Statement statement(database, query.sql);
    if (statement.getBindParameterCount() > 0)
        statement.bind(1, query.bound);
    StatementWatch watch(database, task);
    Step step = watch.step(statement);
    for (; step == Step::Row; step = watch.step(statement)) {
        if (ids.size() % kRowsBetween == 0 && !task.advance(0))
            return Walk::Cancelled;
        ids.push_back(idIn(statement.getColumn(0)));
    }
    if (step == Step::Cancelled)
        return Walk::Cancelled;
    showProgress(task, ids.size(), ids.size());
    return Walk::Finished;
}

// Rows are read in the order in which they lie in the file, which is several times as quick as in
// that of their dates.
Walk filterIds(SQLite::Database &database, const RowIds &from, const RecordFilters &filters,
               TaskMonitor &task, RowIds &ids) {
    RowIds admitted;
    const Walk walk = admittedIds(database, sortedIds(from), filters, task, admitted);
    RowIds kept = from;
    keepOnly(admitted, kept);
    ids.insert(ids.end(), kept.begin(), kept.end());
    return walk;
}

namespace {

/// As collectIds(), but past damage: rows of which nobody can tell go into `lost`.
Walk gatherIds(SQLite::Database &database, const IdQuery &query, TaskMonitor &task, RowIds &ids,
               FoundRows &found, UnreadRows &lost) {
    const std::size_t before = ids.size();
    Walk walk = Walk::Finished;
    if (unlessDamaged([&] { walk = collectIds(database, query, task, ids); }))
        return walk;
    ids.resize(before);
    found.oneByOne = true;
    SurvivingRows rows;
    walk = survivingRows(database, query, task, rows);
    ids.insert(ids.end(), rows.ids.begin(), rows.ids.end());
    lost = std::move(rows.lost);
    return walk;
}

/// Another statement of the same list may have found them.
void appendLost(UnreadRows lost, FoundRows &found) {
    if (lost.empty())
        return;
    for (const std::int32_t id : found.ids)
        lost.erase(id);
    found.ids.insert(found.ids.end(), lost.begin(), lost.end());
    found.lost.merge(lost);
}

} // namespace

Walk findRows(SQLite::Database &database, const IdQuery &query, const RecordFilters &filters,
              TaskMonitor &task, FoundRows &found) {
    UnreadRows lost;
    Walk walk = Walk::Finished;
    if (!filters.enableFilters) {
        walk = gatherIds(database, query, task, found.ids, found, lost);
    } else {
        const std::size_t before = found.ids.size();
        RowIds all;
        walk = gatherIds(database, query, task, all, found, lost);
        if (walk == Walk::Finished)
            walk = filterIds(database, all, filters, task, found.ids);
        if (walk == Walk::Finished)
            found.hidden += all.size() - (found.ids.size() - before);
    }
    appendLost(std::move(lost), found);
    return walk;
}

} // namespace nv
