#pragma once

#include "db/FactList.h"
#include "time/DateFormat.h"

namespace nv {

/// A date in UTC as facts have it; nothing without one.
inline FactValue factDate(Date utc) {
    return formatDate(utc, "yyyy-mm-dd hh:nn:ss");
}

} // namespace nv
