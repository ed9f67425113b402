#include "views/TimeLimit.h"

#include "time/LocalSeconds.h"
#include "views/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>

namespace nv {

namespace {

/// The first moment at which the zone's clock shows the second or a later one.
Date firstMoment(std::int64_t second, const TimeZone &zone, bool enableDSTChanges) {
    constexpr std::int64_t kFarthest = 26 * 3600; // no clock is farther from UTC
    LocalSeconds clock(zone, enableDSTChanges);
    const auto isReached = [&](std::int64_t utc) {
        const auto local = clock.of(Date::fromUnixSeconds(utc));
        return local && *local >= second;
    };
    // A clock that is set back makes the answer no and yes again: the first yes is near the time
    // by the offset before that, so hours are looked at one by one before the second is.
    constexpr std::int64_t kStep = 900;
    std::int64_t utc = second - kFarthest;
    while (utc < second + kFarthest && !isReached(utc))
        utc += kStep;
    std::int64_t before = utc - kStep;
    while (utc - before > 1) {
        const std::int64_t middle = before + (utc - before) / 2;
        (isReached(middle) ? utc : before) = middle;
    }
    return Date::fromUnixSeconds(utc);
}

} // namespace

TimeLimit limitOf(const TimeSpan &span, const TimeZone &zone, bool enableDSTChanges) {
    return {firstMoment(span.begin, zone, enableDSTChanges),
            firstMoment(span.end, zone, enableDSTChanges)};
}

Walk keepWithin(SQLite::Database &project, const TimeLimit &limit, TaskMonitor &task, RowIds &ids) {
    // A text, which is no date, is more than any number.
    SQLite::Statement rows(project, "SELECT URL_ID FROM URLs WHERE ActionDateUTC >= ? AND "
                                    "ActionDateUTC < ? ORDER BY URL_ID");
    // Half a second, since stored days aren't exact to the last bit.
    constexpr double kHalfSecond = 0.5 / 86400;
    rows.bind(1, limit.from.days() - kHalfSecond);
    rows.bind(2, limit.to.days() - kHalfSecond);
    StatementWatch watch(project, task);
    RowIds within;
    Step step = watch.step(rows);
    for (; step == Step::Row; step = watch.step(rows))
        within.push_back(rows.getColumn(0).getInt());
    if (step == Step::Cancelled)
        return Walk::Cancelled;
    std::erase_if(ids,
                  [&within](std::int32_t id) { return !std::ranges::binary_search(within, id); });
    return Walk::Finished;
}

} // namespace nv
