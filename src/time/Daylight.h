#pragma once

#include "time/Date.h"

namespace nv {

// Weekdays are 1 Sunday to 7 Saturday. Results are midnights of the month in which `dayOfMonth`
// lies. A weekday out of range, or a date not above 0, gives the date -1.

Date firstWeekdayOfMonth(int weekday, Date dayOfMonth);
Date lastWeekdayOfMonth(int weekday, Date dayOfMonth);
/// `count` from 1. The date -1 also when the month has too few.
Date nthWeekdayOfMonth(int weekday, int count, Date dayOfMonth);

/// The one daylight rule, that of the United States (before 2007 first Sunday of April to last of
/// October, then second Sunday of March to first of November), for every zone of the world:
/// `latitudeBias` 1 reads it forwards, -1 backwards, any other value never. Changes fall on
/// midnight; false without a date and for dates not above 0. Costs some 20 ns.
bool isDSTInEffect(Date date, int latitudeBias);

} // namespace nv
