#include "views/timeline/TimeLimit.h"

#include "search/FoundIds.h"
#include "time/LocalSeconds.h"
#include "time/StoredDays.h"
#include "views/rows/NarrowIndex.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

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
