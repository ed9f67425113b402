#include "views/timeline/TimeLimit.h"

#include "search/FoundIds.h"
#include "time/LocalSeconds.h"
#include "time/StoredDays.h"
#include "views/rows/NarrowIndex.h"

#include <fmt/format.h>

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

/// As it stands in a statement. A moment beyond the calendar is after, or before, all dates.
double daysFrom(Date moment, double beyond) {
    return moment.has() ? firstDays(moment) : beyond;
}

constexpr double kBeyond = 1e9;

} // namespace

bool holds(const TimeLimit &limit, double days) {
    return days >= daysFrom(limit.from, -kBeyond) && days < daysFrom(limit.to, kBeyond);
}

TimeLimit limitOf(const TimeSpan &span, const TimeZone &zone, bool enableDSTChanges) {
    return {firstMoment(span.begin, zone, enableDSTChanges),
            firstMoment(span.end, zone, enableDSTChanges)};
}

Walk keepWithin(SQLite::Database &project, const TimeLimit &limit, TaskMonitor &task, RowIds &ids) {
    // A text, which is no date, is more than any number.
    const IdQuery condition{fmt::format("ActionDateUTC >= {} AND ActionDateUTC < {}",
                                        daysFrom(limit.from, -kBeyond),
                                        daysFrom(limit.to, kBeyond)),
                            ""};
    RowIds within;
    if (findNarrow(project, {"ActionDateUTC"}, condition, task, within) == Walk::Cancelled)
        return Walk::Cancelled;
    keepOnly(sortedIds(within), ids);
    return Walk::Finished;
}

} // namespace nv
