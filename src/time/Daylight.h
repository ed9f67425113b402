#pragma once

#include "time/Date.h"

namespace nv {

/// The one daylight rule, that of the United States (before 2007 first Sunday of April to last of
/// October, then second Sunday of March to first of November), for every zone of the world:
/// `latitudeBias` 1 reads it forwards, -1 backwards, any other value never. Changes fall on
/// midnight; false without a date and for dates not above 0. Costs some 20 ns.
bool isDSTInEffect(Date date, int latitudeBias);

} // namespace nv
