#pragma once

#include "time/TimeZone.h"
#include "views/rows/IdLoader.h"
#include "views/timeline/Timeline.h"

#include <cstddef>

namespace nv {

/// Rows of which a table shows no others. Rows without a date aren't within any time.
struct TimeLimit {
    Date from; ///< UTC
    Date to;   ///< UTC, not in it

    friend bool operator==(const TimeLimit &, const TimeLimit &) = default;
};

/// The time between two moments of a zone's clock, with both of the hours where one comes twice.
/// Throws std::range_error as convertDateToZone() does.
TimeLimit limitOf(const TimeSpan &span, const TimeZone &zone, bool enableDSTChanges);

/// Whether a stored date is within: days of UTC, which aren't exact to the last bit.
bool holds(const TimeLimit &limit, double days);

/// Takes the other rows out of `ids`, but for those of which nobody can tell since the project is
/// damaged; a cancel leaves all. Throws what the database says.
Walk keepWithin(SQLite::Database &project, const TimeLimit &limit, TaskMonitor &task, RowIds &ids);

} // namespace nv
