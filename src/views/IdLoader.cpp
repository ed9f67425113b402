#include "views/IdLoader.h"

#include "db/ReadOnlyConnection.h"
#include "views/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

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

FilterFacts factsIn(SQLite::Statement &row) {
    FilterFacts facts;
    facts.id = UrlId{row.getColumn(0).getInt64()};
    facts.IsHistory = row.getColumn(1).getInt() != 0;
    facts.IsCookie = row.getColumn(2).getInt() != 0;
    facts.IsBookmark = row.getColumn(3).getInt() != 0;
    facts.cacheType = row.getColumn(4).getString();
    facts.Category = row.getColumn(5).getString();
    facts.URLFileExt = row.getColumn(6).getString();
    facts.URL = row.getColumn(7).getString();
    return facts;
}

} // namespace

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

Walk filterIds(SQLite::Database &database, const RowIds &from, const RowFilter &filter,
               TaskMonitor &task, RowIds &ids) {
    SQLite::Statement row(database, "SELECT URL_ID, IsHistory, IsCookie, IsBookmark, CacheType,"
                                    " Category, URLFileExt, URL FROM URLs WHERE URL_ID = ?");
    std::size_t done = 0;
    for (const std::int32_t id : from) {
        if (!task.advance(static_cast<double>(done) / static_cast<double>(from.size())))
            return Walk::Cancelled;
        row.bind(1, id);
        if (row.executeStep() && filter(factsIn(row)))
            ids.push_back(id);
        row.reset();
        showProgress(task, ++done, from.size());
    }
    return Walk::Finished;
}

} // namespace nv
